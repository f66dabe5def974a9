#include "CellFont.h"

#include "qt/Charset.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace qncomm {
namespace {

/// The nearest number of whole pixels of the screen, at least one.
qreal RoundedPixels(qreal length, qreal devicePixels) {
    return std::max(1.0, std::round(length * devicePixels)) / devicePixels;
}

/// The width that every printable character of the font fits into.
qreal WidestOf(const QFontMetricsF& metrics) {
    qreal widest = 0;
    for (char letter = '!'; letter <= '~'; ++letter)
        widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(letter)));
    return widest;
}

/// Whether the cell shows nothing: a blank, or one of the control characters of ASCII.
bool IsEmptyCell(char cell) {
    return cell == ' ' || cell == '\xA0' || static_cast<unsigned char>(cell) < 0x20
           || cell == '\x7F';
}

} // namespace

CellFont::CellFont(const QFont& font, qreal devicePixels) : mFont(font) {
    const QFontMetricsF metrics(font);
    mWidth = RoundedPixels(WidestOf(metrics), devicePixels);
    mHeight = std::max(1.0, std::ceil(metrics.ascent() + metrics.descent() - 0.01));
    mAscent = RoundedPixels(metrics.ascent(), devicePixels);
    mLineWidth = RoundedPixels(metrics.lineWidth(), devicePixels);
}

CellFont::Variant CellFont::Make(bool bold, bool italic) const {
    Variant variant;
    variant.font = mFont;
    variant.font.setBold(bold || mFont.bold());
    variant.font.setItalic(italic || mFont.italic());
    variant.raw = QRawFont::fromFont(variant.font);
    for (std::size_t byte = 0; byte < Bytes; ++byte) {
        const auto cell = static_cast<char>(byte);
        const QList<quint32> found =
            variant.raw.glyphIndexesForString(QString(QChar(CharacterOf(cell))));
        if (IsEmptyCell(cell) || found.size() != 1 || found.front() == 0) continue;
        variant.glyphs.at(byte) = found.front();
        const QPointF advance = variant.raw.advancesForGlyphIndexes(found).value(0);
        variant.shifts.at(byte) = std::max(0.0, std::floor((mWidth - advance.x()) / 2));
    }
    return variant;
}

const CellFont::Variant& CellFont::Of(bool bold, bool italic) const {
    std::optional<Variant>& variant = mVariants.at((bold ? 2U : 0U) + (italic ? 1U : 0U));
    if (!variant) variant = Make(bold, italic);
    return *variant;
}

void CellFont::Draw(QPainter& painter, const QPointF& at, std::string_view cells, bool bold,
                    bool italic) const {
    const Variant& variant = Of(bold, italic);
    mGlyphs.clear();
    mPlaces.clear();
    QPointF place(at.x(), at.y() + mAscent);
    for (const char cell : cells) {
        const auto byte = static_cast<unsigned char>(cell);
        if (const quint32 glyph = variant.glyphs.at(byte); glyph != 0) {
            mGlyphs.push_back(glyph);
            mPlaces.emplace_back(place.x() + variant.shifts.at(byte), place.y());
        } else if (!IsEmptyCell(cell)) {
            DrawOther(painter, place, cell, variant);
        }
        place.rx() += mWidth;
    }
    if (mGlyphs.empty()) return;
    QGlyphRun run;
    run.setRawFont(variant.raw);
    run.setRawData(mGlyphs.data(), mPlaces.data(), static_cast<int>(mGlyphs.size()));
    painter.drawGlyphRun(QPointF(), run);
}

/// A character that another font has, or a box for one of the bytes that stand for nothing.
void CellFont::DrawOther(QPainter& painter, const QPointF& baseline, char cell,
                         const Variant& variant) const {
    const QChar character(CharacterOf(cell));
    if (character.category() == QChar::Other_Control) {
        const QRectF box(baseline.x(), baseline.y() - mAscent, mWidth, mHeight);
        painter.drawRect(box.adjusted(mWidth / 4, mHeight / 4, -mWidth / 4, -mHeight / 4));
        return;
    }
    painter.setFont(variant.font);
    painter.drawText(baseline, QString(character));
}

} // namespace qncomm
