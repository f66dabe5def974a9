#include "PcxImage.h"

#include <optional>

namespace qnterm {
namespace {

constexpr qsizetype HeaderSize = 128;
constexpr int LargestShownSide = 8192; // dots; beyond any label
constexpr unsigned RunMark = 0xC0;
constexpr unsigned RunLength = 0x3F;

class Header {
  public:
    explicit Header(const QByteArray& bytes) : mBytes(bytes) {}

    bool IsBitmap() const {
        return mBytes.size() > HeaderSize && Byte(0) == 10 && Byte(2) == 1 && Byte(3) == 1
               && Byte(65) == 1;
    }
    int Width() const { return Word(8) - Word(4) + 1; }
    int Height() const { return Word(10) - Word(6) + 1; }
    int BytesPerLine() const { return Word(66); }
    /// The colour of a set bit, by the brightness of the two entries of the palette; where both are
    /// the same, set bits are white as in files without a palette.
    bool SetIsWhite() const { return Brightness(19) >= Brightness(16); }

  private:
    unsigned Byte(qsizetype at) const { return static_cast<unsigned char>(mBytes.at(at)); }
    int Word(qsizetype at) const { return static_cast<int>(Byte(at) | (Byte(at + 1) << 8U)); }
    unsigned Brightness(qsizetype at) const { return Byte(at) + Byte(at + 1) + Byte(at + 2); }

    const QByteArray& mBytes;
};

/// Gives out the bytes of the picture, runs told apart.
class RunReader {
  public:
    explicit RunReader(const QByteArray& bytes) : mBytes(bytes) {}

    std::optional<uchar> Next() {
        if (mLeft == 0) {
            if (mAt >= mBytes.size()) return std::nullopt;
            const auto byte = static_cast<uchar>(mBytes.at(mAt++));
            mLeft = 1;
            mValue = byte;
            if ((byte & RunMark) == RunMark) {
                mLeft = byte & RunLength;
                if (mLeft == 0 || mAt >= mBytes.size()) return std::nullopt;
                mValue = static_cast<uchar>(mBytes.at(mAt++));
            }
        }
        --mLeft;
        return mValue;
    }

  private:
    const QByteArray& mBytes;
    qsizetype mAt = HeaderSize;
    unsigned mLeft = 0;
    uchar mValue = 0;
};

} // namespace

QImage DecodePcx(const QByteArray& bytes) {
    const Header header(bytes);
    if (!header.IsBitmap()) return {};
    const int width = header.Width();
    const int height = header.Height();
    const int lineBytes = header.BytesPerLine();
    if (width < 1 || height < 1 || width > LargestShownSide || height > LargestShownSide
        || lineBytes * 8 < width)
        return {};
    QImage image(width, height, QImage::Format_Mono);
    const bool white = header.SetIsWhite();
    image.setColorTable(
        {white ? qRgb(0, 0, 0) : qRgb(255, 255, 255), white ? qRgb(255, 255, 255) : qRgb(0, 0, 0)});
    RunReader runs(bytes);
    for (int row = 0; row < height; ++row) {
        uchar* line = image.scanLine(row);
        for (int column = 0; column < lineBytes; ++column) {
            const auto byte = runs.Next();
            if (!byte) return {};
            if (column < image.bytesPerLine() && column * 8 < width) line[column] = *byte;
        }
    }
    return image;
}

} // namespace qnterm
