#include "MemberArguments.h"

#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"
#include "control/PropertyBag.h"

#include <charconv>

namespace qncomm {
namespace {

constexpr double LargestFont = 10'000; // points

template <class T>
const T* HeldBy(const MemberValue& value) {
    return std::get_if<T>(&value.value);
}

/// A number or a truth value, as far as hosts write one.
PropertyValue Scalar(const MemberValue& given) {
    if (const auto* flag = HeldBy<bool>(given)) return *flag;
    if (const auto* number = HeldBy<std::int32_t>(given)) return *number;
    if (const auto* number = HeldBy<double>(given)) return ToText(*number);
    if (const auto* text = HeldBy<MemberText>(given)) return Trim(text->text);
    RaiseRuntimeError(RtTypeMismatch);
}

MemberValue TextFrom(const MemberValue& given, TextKind kind) {
    if (const auto* text = HeldBy<MemberText>(given)) return {text->text, kind};
    return {AsString(Scalar(given)), kind};
}

MemberValue KeyFrom(const MemberValue& given) {
    if (HeldBy<MemberText>(given) != nullptr) return given;
    return AsLong(Scalar(given));
}

MemberValue NamesFrom(const MemberValue& given) {
    MemberValue::List names;
    if (const auto* list = HeldBy<MemberValue::List>(given)) {
        for (const MemberValue& name : *list)
            names.push_back(TextFrom(name, TextKind::Line));
    } else if (const auto* text = HeldBy<MemberText>(given)) {
        for (const std::string& name : SplitNonEmpty(text->text, ","))
            names.emplace_back(Trim(name), TextKind::Line);
    } else {
        RaiseRuntimeError(RtTypeMismatch);
    }
    return names;
}

MemberValue FontOf(std::string_view name, const MemberValue& size) {
    const std::string text = Trim(AsString(Scalar(size)));
    double points = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, points);
    if (error != std::errc() || stop != end) RaiseRuntimeError(RtTypeMismatch);
    if (!(points > 0 && points <= LargestFont)) RaiseRuntimeError(RtInvalidCall);
    return MemberValue::Record{{"Name", std::string(name)}, {"Size", points}};
}

MemberValue FontFrom(const MemberValue& given) {
    if (const auto* text = HeldBy<MemberText>(given)) {
        const std::size_t comma = text->text.rfind(',');
        if (comma == std::string::npos) RaiseRuntimeError(RtTypeMismatch);
        return FontOf(Trim(text->text.substr(0, comma)), text->text.substr(comma + 1));
    }
    const auto* record = HeldBy<MemberValue::Record>(given);
    if (record == nullptr || record->size() != 2) RaiseRuntimeError(RtTypeMismatch);
    const auto* name = HeldBy<MemberText>(record->front().second);
    if (name == nullptr) RaiseRuntimeError(RtTypeMismatch);
    return FontOf(name->text, record->back().second);
}

MemberValue SettingsFrom(const MemberValue& given) {
    if (HeldBy<std::shared_ptr<RegSettings>>(given) != nullptr) return given;
    RaiseRuntimeError(RtTypeMismatch);
}

MemberValue Convert(const MemberValue& given, MemberType type) {
    switch (type) {
    case MemberType::Boolean:
        return AsBoolean(Scalar(given));
    case MemberType::Integer:
        return AsInteger(Scalar(given));
    case MemberType::Long:
        return AsLong(Scalar(given));
    case MemberType::PrinterText:
        return TextFrom(given, TextKind::Line);
    case MemberType::HostText:
        return TextFrom(given, TextKind::Host);
    case MemberType::KeyIndex:
        return KeyFrom(given);
    case MemberType::Names:
        return NamesFrom(given);
    case MemberType::Font:
        return FontFrom(given);
    case MemberType::Settings:
        return SettingsFrom(given);
    default: // no parameter takes them
        RaiseRuntimeError(RtTypeMismatch);
    }
}

/// Takes an argument, or what stands for one that is left out; an error names the parameter.
MemberValue Take(const MemberParameter& parameter, const MemberValue* given) {
    try {
        if (given != nullptr) return Convert(*given, parameter.type);
        if (!parameter.byDefault) RaiseRuntimeError(RtArgumentMissing);
        return Convert(std::string(*parameter.byDefault), parameter.type);
    } catch (const QNError& error) {
        throw QNError(error.Number(), error.Source(),
                      error.Description() + ": " + std::string(parameter.name));
    }
}

} // namespace

MemberArguments::MemberArguments(const SurfaceMember& member,
                                 const std::vector<MemberValue>& given) {
    const auto& parameters = member.parameters;
    if (given.size() > parameters.size()) RaiseRuntimeError(RtArgumentCount);
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const bool leftOut = i >= given.size() || given[i].IsNothing();
        mValues.push_back(Take(parameters[i], leftOut ? nullptr : &given[i]));
    }
}

MemberValue::Record MemberArguments::WrittenBack(const SurfaceMember& member) const {
    MemberValue::Record record;
    for (std::size_t i = 0; i < mValues.size(); ++i)
        if (member.parameters[i].writtenBack)
            record.emplace_back(member.parameters[i].name, mValues[i]);
    return record;
}

template <>
Collection<std::string> MemberArguments::As(std::size_t at) const {
    Collection<std::string> names;
    for (const MemberValue& name : std::get<MemberValue::List>(mValues[at].value))
        names.Add(std::get<MemberText>(name.value).text);
    return names;
}

template <>
TerminalFont MemberArguments::As(std::size_t at) const {
    const auto& font = std::get<MemberValue::Record>(mValues[at].value);
    return {std::get<MemberText>(font.front().second.value).text,
            static_cast<float>(std::get<double>(font.back().second.value))};
}

template <>
std::shared_ptr<RegSettings> MemberArguments::As(std::size_t at) const {
    return std::get<std::shared_ptr<RegSettings>>(mValues[at].value);
}

} // namespace qncomm
