#include "common/MacroRecord.h"

#include <string>

namespace qncomm {
namespace {

constexpr std::string_view KeysSection = "FunctionKeys";
constexpr char FieldSeparator = ';';

} // namespace

std::optional<FunctionKeyKind> MacroRecord::Kind() const {
    for (const FunctionKeyKind known : {TextMacro, FileMacro, RunMacro})
        if (kind == std::to_string(known)) return known;
    return std::nullopt;
}

MacroRecord ParseMacro(std::string_view sStored) {
    const std::size_t separator = sStored.find(FieldSeparator);
    MacroRecord record{std::string(sStored.substr(0, separator)), {}};
    if (separator != std::string_view::npos) record.argument = sStored.substr(separator + 1);
    return record;
}

std::string PrintMacro(FunctionKeyKind kind, std::string_view sArgument) {
    return std::to_string(kind) + FieldSeparator + std::string(sArgument);
}

MacroRecord ReadMacro(const RegSettings* settings, std::string_view sKey) {
    return ParseMacro(settings != nullptr ? settings->ReadValue(KeysSection, sKey, {})
                                          : std::string());
}

SettingValue MacroSetting(std::string_view sKey, FunctionKeyKind kind, std::string_view sArgument) {
    return {std::string(KeysSection), std::string(sKey), PrintMacro(kind, sArgument)};
}

} // namespace qncomm
