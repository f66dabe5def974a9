#include "label/TextPainter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_GLYPH_H
#include FT_OUTLINE_H

namespace qnsim {
namespace {

constexpr double MillimetresPerInch = 25.4;
constexpr int PointsPerInch = 72;
constexpr double FixedOne = 65536.0;
constexpr double Degrees = 57.295779513;
constexpr int WidestText = 32'000; // dots; a longer text is cut there
/// How many times its size a font's line or character may be high or wide. A font file says of
/// itself how large it is; what says more than this is not drawn.
constexpr int MostGlyphSizes = 4;

/// The characters 0x80 to 0x9F of Windows-1252; 0 = none.
constexpr std::array<char32_t, 32> WindowsExtras{
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char32_t Unicode(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 && byte < 0xA0 ? WindowsExtras[byte - 0x80U] : byte;
}

/// A font file opened by the font library, both released with their owner.
class OpenFont {
  public:
    explicit OpenFont(std::string_view file) {
        if (FT_Init_FreeType(&mLibrary) != 0) return;
        const auto* bytes = static_cast<const FT_Byte*>(static_cast<const void*>(file.data()));
        if (FT_New_Memory_Face(mLibrary, bytes, static_cast<FT_Long>(file.size()), 0, &mFace) != 0)
            mFace = nullptr;
    }
    ~OpenFont() {
        if (mFace != nullptr) FT_Done_Face(mFace);
        if (mLibrary != nullptr) FT_Done_FreeType(mLibrary);
    }
    OpenFont(const OpenFont&) = delete;
    OpenFont& operator=(const OpenFont&) = delete;

    FT_Face Face() const { return mFace; }
    bool Usable() const { return mFace != nullptr && FT_IS_SCALABLE(mFace); }

  private:
    FT_Library mLibrary = nullptr;
    FT_Face mFace = nullptr;
};

FT_Matrix FontMatrix(const FontChoice& font) {
    const double wide = font.width / 100.0;
    return {static_cast<FT_Fixed>(wide * FixedOne),
            static_cast<FT_Fixed>(std::tan(font.slant / Degrees) * FixedOne), 0,
            static_cast<FT_Fixed>(FixedOne)};
}

/// One character's dots and where they stand on the line.
void Draw(const FT_GlyphSlotRec& glyph, int x, int baseLine, Bitmap& line) {
    const FT_Bitmap& dots = glyph.bitmap;
    for (unsigned row = 0; row < dots.rows; ++row) {
        const unsigned char* bits = dots.buffer + static_cast<std::ptrdiff_t>(row) * dots.pitch;
        for (unsigned column = 0; column < dots.width; ++column) {
            if ((bits[column / 8] & (0x80U >> (column % 8))) == 0) continue;
            line.Set(x + glyph.bitmap_left + static_cast<int>(column),
                     baseLine - glyph.bitmap_top + static_cast<int>(row));
        }
    }
}

/// Dots that a line of this font, or a character of it, may be high.
int MostDots(const FontChoice& font, FT_UInt dotsPerInch) {
    return MostGlyphSizes * (font.points * static_cast<int>(dotsPerInch) / PointsPerInch + 1);
}

bool LoadCharacter(FT_Face face, char c, int most) {
    if (FT_Load_Char(face, Unicode(c), FT_LOAD_TARGET_MONO) != 0) return false;
    FT_BBox box{};
    FT_Outline_Get_CBox(&face->glyph->outline, &box);
    if (std::max(box.xMax - box.xMin, box.yMax - box.yMin) / 64 > most) return false;
    return FT_Render_Glyph(face->glyph, FT_RENDER_MODE_MONO) == 0;
}

int TextWidth(FT_Face face, std::string_view text, int most) {
    FT_Pos width = 0;
    int reach = 0;
    for (const char c : text) {
        if (width / 64 > WidestText || !LoadCharacter(face, c, most)) continue;
        const int right = face->glyph->bitmap_left + static_cast<int>(face->glyph->bitmap.width);
        reach = std::max(reach, static_cast<int>(width / 64) + right);
        width += face->glyph->advance.x;
    }
    return std::max(reach, static_cast<int>((width + 32) / 64));
}

} // namespace

bool IsScalableFont(std::string_view fontFile) {
    return OpenFont(fontFile).Usable();
}

Bitmap PaintScalableText(std::string_view text, const FontChoice& font, int dotsPerMm,
                         std::string_view fontFile) {
    const OpenFont open(fontFile);
    if (!open.Usable()) return {};
    FT_Face face = open.Face();
    const auto dotsPerInch = static_cast<FT_UInt>(std::lround(dotsPerMm * MillimetresPerInch));
    if (FT_Set_Char_Size(face, 0, FT_F26Dot6{font.points} * 64, dotsPerInch, dotsPerInch) != 0)
        return {};
    FT_Matrix shape = FontMatrix(font);
    FT_Set_Transform(face, &shape, nullptr);
    const int most = MostDots(font, dotsPerInch);
    const auto dots = [most](FT_Pos height) {
        return static_cast<int>(std::clamp<FT_Pos>((height + 63) / 64, 0, most));
    };
    const int ascent = dots(face->size->metrics.ascender);
    const int descent = dots(-face->size->metrics.descender);
    Bitmap line(std::clamp(TextWidth(face, text, most), 0, WidestText), ascent + descent);
    FT_Pos at = 0;
    for (const char c : text) {
        if (at / 64 > WidestText || !LoadCharacter(face, c, most)) continue;
        Draw(*face->glyph, static_cast<int>(at / 64), ascent, line);
        at += face->glyph->advance.x;
    }
    return line;
}

} // namespace qnsim
