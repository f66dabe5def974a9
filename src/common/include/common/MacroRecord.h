#pragma once

#include "common/RegSettings.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// What a function key does; the settings store keeps its number.
enum FunctionKeyKind : std::int32_t {
    TextMacro = 0, ///< sends a text, 8-bit as the line takes it
    FileMacro = 1, ///< sends a host file; the argument is its path in UTF-8
    RunMacro = 2,  ///< starts a program; the argument is its command line in UTF-8
};

/// The function keys, by the names that they have in the toolbar and in the settings store.
constexpr std::array<std::string_view, 8> FunctionKeys = {"F1", "F2", "F3", "F4",
                                                          "F5", "F6", "F7", "F8"};

/// What is stored for a function key: the kind's number, ";" and the argument. A stored text
/// without
/// ";" is a kind alone. The argument may hold further semicolons.
struct MacroRecord {
    std::string kind;     ///< as it is stored; a key of no known kind does nothing
    std::string argument; ///< a text, a path or a command line

    /// The kind whose number is stored, to the letter; nothing for any other text.
    std::optional<FunctionKeyKind> Kind() const;
};

/// The record that a stored text stands for.
MacroRecord ParseMacro(std::string_view sStored);
/// The text to store for a key of that kind; ParseMacro reads it back.
std::string PrintMacro(FunctionKeyKind kind, std::string_view sArgument);

/// The record of a key, "F1" to "F8". Without a store or a stored value it is of no known kind.
MacroRecord ReadMacro(const RegSettings* settings, std::string_view sKey);
/// What to write into the settings store to define a key.
SettingValue MacroSetting(std::string_view sKey, FunctionKeyKind kind, std::string_view sArgument);

} // namespace qncomm
