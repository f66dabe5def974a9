#pragma once

#include <QColor>
#include <QPalette>

#include <cstdint>

namespace qncomm {

/// A colour as the system counts it, on this desktop: 0x00BBGGRR, or negative for a colour of the
/// desktop, which the palette has a role for. unknown: the role for a number that names no colour.
QColor ColourOf(std::int32_t lColor, const QPalette& palette,
                QPalette::ColorRole unknown = QPalette::Base);

/// As 0x00BBGGRR; the alpha channel is dropped.
std::int32_t NumberOfColour(const QColor& colour);

/// text, or black or white in its place when it could hardly be read on back.
QColor ReadableOn(const QColor& back, const QColor& text);

} // namespace qncomm
