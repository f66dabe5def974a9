#pragma once

#include "control/ControlProperty.h"
#include "control/TerminalFont.h"

#include <QFont>
#include <QVariant>

namespace qncomm {

/// A property's value as a value of the toolkit: numbers as int, texts as QString, fonts as QFont.
QVariant QVariantOf(const Variant& value);
/// A value of the toolkit as one of that type. Numbers beyond 16 bits become the nearest Integer;
/// a value that cannot be converted becomes 0, False or an empty text.
Variant VariantOf(const QVariant& value, PropertyType type);

/// The font as the toolkit has it, of at least 1 point.
QFont FontOf(const TerminalFont& font);
/// The font in points, also when the toolkit's counts in pixels.
TerminalFont TerminalFontOf(const QFont& font);

} // namespace qncomm
