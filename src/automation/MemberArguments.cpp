#include "MemberArguments.h"

#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"

namespace qncomm {
namespace {

constexpr float LargestFont = 10'000; // points

Variant TextFrom(const Variant& given, TextKind kind) {
    return Variant(AsString(given), kind);
}

Variant KeyFrom(const Variant& given) {
    if (given.As<VariantText>() != nullptr) return given;
    return AsLong(given);
}

Variant NamesFrom(const Variant& given) {
    Variant::List names;
    if (const auto* list = given.As<Variant::List>()) {
        for (const Variant& name : *list)
            names.push_back(TextFrom(name, TextKind::Line));
    } else if (const auto* text = given.As<VariantText>()) {
        for (const std::string& name : SplitNonEmpty(text->text, ","))
            names.emplace_back(Trim(name), TextKind::Line);
    } else {
        RaiseRuntimeError(RtTypeMismatch);
    }
    return Variant(std::move(names));
}

Variant FontFrom(const Variant& given) {
    const TerminalFont font = AsFont(given);
    if (!(font.size > 0 && font.size <= LargestFont)) RaiseRuntimeError(RtInvalidCall);
    return FontRecord(font);
}

Variant SettingsFrom(const Variant& given) {
    if (given.As<std::shared_ptr<RegSettings>>() != nullptr) return given;
    RaiseRuntimeError(RtTypeMismatch);
}

Variant RecordsFrom(const Variant& given) {
    if (given.As<Variant::List>() != nullptr) return given;
    RaiseRuntimeError(RtTypeMismatch);
}

} // namespace

Variant ConvertedTo(MemberType type, const Variant& given) {
    switch (type) {
    case MemberType::Boolean:
        return AsBoolean(given);
    case MemberType::Integer:
        return AsInteger(given);
    case MemberType::Long:
        return AsLong(given);
    case MemberType::Single:
        return AsDouble(given);
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
    case MemberType::Records:
        return RecordsFrom(given);
    case MemberType::Nothing: // no parameter takes it
        break;
    }
    RaiseRuntimeError(RtTypeMismatch);
}

namespace {

/// Takes an argument, or what stands for one that is left out; an error names the parameter.
Variant Take(const MemberParameter& parameter, const Variant* given) {
    try {
        if (given != nullptr) return ConvertedTo(parameter.type, *given);
        if (!parameter.byDefault) RaiseRuntimeError(RtArgumentMissing);
        return ConvertedTo(parameter.type, Variant(*parameter.byDefault));
    } catch (const QNError& error) {
        throw QNError(error.Number(), error.Source(),
                      error.Description() + ": " + std::string(parameter.name));
    }
}

} // namespace

MemberArguments::MemberArguments(const SurfaceMember& member, const std::vector<Variant>& given) {
    const auto& parameters = member.parameters;
    if (given.size() > parameters.size()) RaiseRuntimeError(RtArgumentCount);
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const bool leftOut = i >= given.size() || given[i].IsNothing();
        mValues.push_back(Take(parameters[i], leftOut ? nullptr : &given[i]));
    }
}

Variant::Record MemberArguments::WrittenBack(const SurfaceMember& member) const {
    Variant::Record record;
    for (std::size_t i = 0; i < mValues.size(); ++i)
        if (member.parameters[i].writtenBack)
            record.emplace_back(member.parameters[i].name, mValues[i]);
    return record;
}

} // namespace qncomm
