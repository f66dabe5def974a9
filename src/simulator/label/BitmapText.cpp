#include "Text.h"
#include "label/Glyphs.h"
#include "label/TextPainter.h"

#include <algorithm>
#include <cmath>

namespace qnsim {
namespace {

constexpr double DegreesPerRadian = 57.295779513;

/// What a built-in font's name says: two letters, the height in tenths of a millimetre, and the
/// weight.
struct NamedFont {
    int height;
    bool bold;
    bool proportional;
};

NamedFont ReadFontName(std::string_view name) {
    const std::string upper = Upper(name);
    return {static_cast<int>(TextNumber(upper.substr(2, 3))), upper.size() > 5 && upper[5] == 'B',
            upper.starts_with("SW")};
}

struct Span {
    int first;
    int last;
};

/// The columns that a character fills in a proportional font.
Span FilledColumns(char character) {
    unsigned all = 0;
    for (const std::uint8_t row : GlyphOf(character))
        all |= row;
    if (all == 0) return {0, 2};
    Span span{0, GlyphWidth - 1};
    while ((all & (0x10U >> static_cast<unsigned>(span.first))) == 0)
        ++span.first;
    while ((all & (0x10U >> static_cast<unsigned>(span.last))) == 0)
        --span.last;
    return span;
}

Bitmap PlainText(std::string_view text, bool proportional) {
    int width = 0;
    for (const char c : text) {
        const Span span = proportional ? FilledColumns(c) : Span{0, GlyphWidth - 1};
        width += span.last - span.first + 2;
    }
    Bitmap line(width - 1, GlyphHeight);
    int at = 0;
    for (const char c : text) {
        const Span span = proportional ? FilledColumns(c) : Span{0, GlyphWidth - 1};
        const auto rows = GlyphOf(c);
        for (int y = 0; y < GlyphHeight; ++y) {
            for (int x = span.first; x <= span.last; ++x) {
                const bool black =
                    (rows[static_cast<std::size_t>(y)] & (0x10U >> static_cast<unsigned>(x))) != 0;
                if (black) line.Set(at + x - span.first, y);
            }
        }
        at += span.last - span.first + 2;
    }
    return line;
}

Bitmap Bolder(const Bitmap& line, int by) {
    Bitmap bold(line.Width() + by, line.Height());
    for (int y = 0; y < line.Height(); ++y) {
        for (int x = 0; x < line.Width(); ++x) {
            if (line.Get(x, y)) bold.FillBox(x, y, by + 1, 1);
        }
    }
    return bold;
}

} // namespace

Bitmap PaintBitmapText(std::string_view text, const FontChoice& font, int dotsPerMm) {
    const NamedFont named = ReadFontName(font.name);
    const int dots = named.height * dotsPerMm / 10;
    const int vertically = std::max(1, (dots + GlyphHeight / 2) / GlyphHeight);
    const int horizontally = std::max(1, (vertically * font.width + 50) / 100);
    Bitmap line = PlainText(text, named.proportional).Scaled(horizontally, vertically);
    if (named.bold) line = Bolder(line, std::max(1, horizontally / 2));
    return line.Leaning(
        static_cast<int>(std::lround(100 * std::tan(font.slant / DegreesPerRadian))));
}

} // namespace qnsim
