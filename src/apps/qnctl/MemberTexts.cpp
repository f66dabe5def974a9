#include "MemberTexts.h"

#include "common/Numbers.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"
#include "console/Charset.h"

#include <algorithm>
#include <utility>

namespace qnctl {
namespace {

using qncomm::MemberParameter;
using qncomm::MemberType;
using qncomm::SurfaceMember;
using qncomm::Variant;
using qncomm::VariantText;

std::string Utf8Of(const VariantText& text) {
    return text.kind == qncomm::TextKind::Line ? qncomm::Utf8FromPrinter(text.text) : text.text;
}

bool IsForPrinter(MemberType type) {
    return type == MemberType::PrinterText || type == MemberType::Names;
}

/// A text of the command line for a parameter of this type; nothing when the printer lacks one of
/// its characters.
std::optional<Variant> ValueFor(MemberType type, const std::string& text) {
    if (IsForPrinter(type)) {
        const auto bytes = qncomm::PrinterFromUtf8(text);
        if (!bytes) return std::nullopt;
        return Variant(*bytes, qncomm::TextKind::Line);
    }
    if (type == MemberType::KeyIndex) { // a key without a name is a position
        if (const auto position = qncomm::WholeNumberOf(text)) return Variant(*position);
    }
    return Variant(text);
}

/// Where an argument goes: by the name before its ":=", else to the next place.
struct Placed {
    std::size_t at = 0;
    std::string text;
};
Placed Place(const SurfaceMember& member, const std::string& text, std::size_t next) {
    const std::size_t sign = text.find(":=");
    if (sign == std::string::npos) return {next, text};
    const auto found =
        std::ranges::find_if(member.parameters, [&](const MemberParameter& parameter) {
            return qncomm::EqualNoCase(parameter.name, text.substr(0, sign));
        });
    if (found == member.parameters.end()) return {next, text};
    return {static_cast<std::size_t>(found - member.parameters.begin()), text.substr(sign + 2)};
}

/// What is wrong with a call that has not been made.
Outcome Wrong(const qncomm::QNError& error, const std::string& where) {
    return {ExitStatus::Usage, error.Number(), error.Source(), error.Description() + where, {}};
}

struct LineText {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(bool value) const { return qncomm::ToText(value); }
    std::string operator()(std::int32_t value) const { return qncomm::ToText(value); }
    std::string operator()(double value) const { return qncomm::ToText(value); }
    std::string operator()(const VariantText& text) const { return Utf8Of(text); }
    std::string operator()(const std::shared_ptr<qncomm::RegSettings>&) const {
        return "(the settings)";
    }
    std::string operator()(const Variant::List& list) const {
        std::string line;
        for (const Variant& item : list)
            line += (line.empty() ? "" : ", ") + LineOf(item);
        return line;
    }
    std::string operator()(const Variant::Record& record) const {
        std::string line;
        for (const auto& [name, value] : record)
            line.append(line.empty() ? "" : ",").append(LineOf(value));
        return line;
    }
};

struct JsonValue {
    Json operator()(std::monostate) const { return nullptr; }
    Json operator()(bool value) const { return value; }
    Json operator()(std::int32_t value) const { return value; }
    Json operator()(double value) const { return value; }
    Json operator()(const VariantText& text) const { return Utf8Of(text); }
    Json operator()(const std::shared_ptr<qncomm::RegSettings>&) const { return "(the settings)"; }
    Json operator()(const Variant::List& list) const {
        Json items = Json::array();
        for (const Variant& item : list)
            items.push_back(JsonOf(item));
        return items;
    }
    Json operator()(const Variant::Record& record) const {
        Json fields = Json::object();
        for (const auto& [name, value] : record)
            fields[name] = JsonOf(value);
        return fields;
    }
};

bool IsNumber(const Variant& value) {
    return std::holds_alternative<std::int32_t>(value.value);
}

void ShowRecords(const Output& out, const Variant::List& list) {
    std::vector<Output::Align> columns;
    std::vector<Output::Row> rows(1);
    for (const Variant& item : list) {
        const auto& record = std::get<Variant::Record>(item.value);
        if (columns.empty())
            for (const auto& [name, value] : record) {
                columns.push_back(IsNumber(value) ? Output::Align::Right : Output::Align::Left);
                rows.front().push_back(name);
            }
        Output::Row row;
        for (const auto& [name, value] : record)
            row.push_back(LineOf(value));
        rows.push_back(std::move(row));
    }
    if (!list.empty()) out.Table(columns, rows);
}

} // namespace

std::optional<MemberCall> UnderstandCall(const std::string& name,
                                         const std::vector<std::string>& texts, Outcome& outcome) {
    MemberCall call;
    try {
        call.member = &FindMember(qncomm::ControlClass(), name, texts.size());
    } catch (const qncomm::QNError& error) {
        outcome = Wrong(error, ": \"" + name + "\"; \"qnctl call --list\" shows them all.");
        return std::nullopt;
    }
    for (const std::string& text : texts) {
        const auto [at, value] = Place(*call.member, text, call.arguments.size());
        if (at >= call.arguments.size()) call.arguments.resize(at + 1);
        const bool known = at < call.member->parameters.size();
        const auto understood =
            ValueFor(known ? call.member->parameters[at].type : MemberType::HostText, value);
        if (!understood) {
            outcome = Refused(ExitStatus::Usage,
                              "\"" + value
                                  + "\" holds a character that the printer's Windows-1252 lacks.");
            return std::nullopt;
        }
        call.arguments[at] = *understood;
    }
    try {
        CheckArguments(*call.member, call.arguments);
    } catch (const qncomm::QNError& error) {
        const bool tooMany = error.Number() == qncomm::RtArgumentCount;
        outcome = Wrong(error, (tooMany ? ": " : " of ") + SignatureOf(*call.member));
        return std::nullopt;
    }
    return call;
}

std::string SignatureOf(const SurfaceMember& member) {
    std::string text(member.name);
    text += '(';
    const char* before = "";
    for (const MemberParameter& parameter : member.parameters) {
        text.append(before).append(parameter.name);
        if (parameter.byDefault)
            text.append(":=").append(parameter.byDefault->empty() ? "\"\"" : *parameter.byDefault);
        before = ", ";
    }
    return text + ")";
}

std::string LineOf(const Variant& value) {
    return std::visit(LineText(), value.value);
}

Json JsonOf(const Variant& value) {
    return std::visit(JsonValue(), value.value);
}

void ShowValue(const Output& out, const Variant& value) {
    if (value.IsNothing()) return;
    if (const auto* list = std::get_if<Variant::List>(&value.value))
        ShowRecords(out, *list);
    else
        out.Line(LineOf(value));
}

} // namespace qnctl
