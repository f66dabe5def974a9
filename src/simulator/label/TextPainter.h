#pragma once

// Turns a line of text into dots: the built-in bitmap fonts and installed scalable fonts.

#include "label/Bitmap.h"

#include <string>
#include <string_view>

namespace qnsim {

struct FontChoice {
    std::string name;
    int points = 12; ///< the height of scalable fonts; a bitmap font has its own
    int slant = 0;   ///< degrees, 0 to 60
    int width = 100; ///< percent of the height's natural width
};

/// The text in a built-in bitmap font. Its name gives the height in tenths of a millimetre and the
/// weight.
Bitmap PaintBitmapText(std::string_view text, const FontChoice& font, int dotsPerMm);

/// The text in a scalable font whose file is given; bytes are Windows-1252. Empty when the file
/// cannot be used.
Bitmap PaintScalableText(std::string_view text, const FontChoice& font, int dotsPerMm,
                         std::string_view fontFile);

/// The file is a scalable font that can be used.
bool IsScalableFont(std::string_view fontFile);

} // namespace qnsim
