#pragma once

#include "common/Variant.h"

#include <string>

namespace qncomm {

/// A font as hosts hand it around.
struct TerminalFont {
    std::string name;   ///< its family, UTF-8
    float size = 10.0F; ///< points
    /// Equal in name, told apart by case, and size.
    bool operator==(const TerminalFont&) const = default;
};

/// The shortest text that reads back as the size, with "." in every locale: "9.75".
std::string FontSizeText(float size);

/// A font as a record of Name and Size; the size is the shortest number that reads back as it, so
/// that 9.1 points stay 9.1.
Variant FontRecord(const TerminalFont& font);

/// The font of such a record or of a text "NAME,SIZE". Raises 13 for what is no font and 5 for a
/// size that no font can have a number for; whether the terminal can show the size is not looked
/// at.
TerminalFont AsFont(const Variant& value);

} // namespace qncomm
