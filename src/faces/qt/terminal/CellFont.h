#pragma once

#include <QFont>
#include <QGlyphRun>
#include <QPointF>
#include <QRawFont>
#include <QString>

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

class QPainter;

namespace qncomm {

/// The font of a grid of cells: how large a cell is, and every byte of the line as a picture in it.
/// Each character stands in its own cell, also with a font whose characters differ in width.
class CellFont {
  public:
    CellFont() = default;
    /// Cells are whole pixels wide on a screen that has devicePixels for each unit of length, and
    /// whole units high, so that rows can be scrolled.
    CellFont(const QFont& font, qreal devicePixels);

    const QFont& Font() const { return mFont; }
    qreal Width() const { return mWidth; }
    qreal Height() const { return mHeight; }
    /// From a cell's top to the line that the letters stand on.
    qreal Ascent() const { return mAscent; }
    qreal LineWidth() const { return mLineWidth; }

    /// Draws bytes of the line with the painter's pen; `at` is the first cell's upper left corner.
    void Draw(QPainter& painter, const QPointF& at, std::string_view cells, bool bold,
              bool italic) const;

  private:
    static constexpr std::size_t Bytes = 256;

    /// The font in one of its looks.
    struct Variant {
        QFont font;
        QRawFont raw;
        std::array<quint32, Bytes> glyphs{}; ///< 0: the font has none
        std::array<qreal, Bytes> shifts{};   ///< to the middle of a cell
    };

    Variant Make(bool bold, bool italic) const;
    const Variant& Of(bool bold, bool italic) const;
    void DrawOther(QPainter& painter, const QPointF& baseline, char cell,
                   const Variant& variant) const;

    QFont mFont;
    qreal mWidth = 8;
    qreal mHeight = 16;
    qreal mAscent = 12;
    qreal mLineWidth = 1;
    mutable std::array<std::optional<Variant>, 4> mVariants; ///< made when they are first drawn
    mutable std::vector<quint32> mGlyphs;                    ///< of the piece that is being drawn
    mutable std::vector<QPointF> mPlaces;
};

} // namespace qncomm
