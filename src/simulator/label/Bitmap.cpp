#include "label/Bitmap.h"

namespace qnsim {
namespace {

std::uint8_t Mask(int x) {
    return static_cast<std::uint8_t>(0x80U >> (static_cast<unsigned>(x) % 8U));
}

} // namespace

Bitmap::Bitmap(int width, int height) {
    if (width < 1 || height < 1) return;
    mWidth = width;
    mHeight = height;
    mRowBytes = (static_cast<std::size_t>(width) + 7) / 8;
    mBits.assign(mRowBytes * static_cast<std::size_t>(height), 0);
}

bool Bitmap::Get(int x, int y) const {
    return Inside(x, y) && (Row(y)[x / 8] & Mask(x)) != 0;
}

void Bitmap::Set(int x, int y, bool black) {
    if (!Inside(x, y)) return;
    std::uint8_t& byte =
        mBits[static_cast<std::size_t>(y) * mRowBytes + static_cast<std::size_t>(x / 8)];
    byte = static_cast<std::uint8_t>(black ? byte | Mask(x) : byte & ~Mask(x));
}

void Bitmap::FillBox(int x, int y, int width, int height) {
    for (int row = y; row < y + height; ++row) {
        for (int column = x; column < x + width; ++column)
            Set(column, row);
    }
}

void Bitmap::Invert() {
    for (int y = 0; y < mHeight; ++y) {
        for (int x = 0; x < mWidth; ++x)
            Set(x, y, !Get(x, y));
    }
}

Bitmap Bitmap::Scaled(int horizontally, int vertically) const {
    Bitmap result(mWidth * horizontally, mHeight * vertically);
    for (int y = 0; y < mHeight; ++y) {
        for (int x = 0; x < mWidth; ++x) {
            if (Get(x, y))
                result.FillBox(x * horizontally, y * vertically, horizontally, vertically);
        }
    }
    return result;
}

Bitmap Bitmap::Bordered(int border) const {
    Bitmap result(mWidth + 2 * border, mHeight + 2 * border);
    for (int y = 0; y < mHeight; ++y) {
        for (int x = 0; x < mWidth; ++x) {
            if (Get(x, y)) result.Set(x + border, y + border);
        }
    }
    return result;
}

Bitmap Bitmap::Leaning(int lean) const {
    if (lean == 0 || IsEmpty()) return *this;
    Bitmap result(mWidth + (mHeight - 1) * lean / 100, mHeight);
    for (int y = 0; y < mHeight; ++y) {
        const int shift = (mHeight - 1 - y) * lean / 100;
        for (int x = 0; x < mWidth; ++x) {
            if (Get(x, y)) result.Set(x + shift, y);
        }
    }
    return result;
}

} // namespace qnsim
