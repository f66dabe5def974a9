#pragma once

// A picture of one bit per dot.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qnsim {

class Bitmap {
  public:
    Bitmap() = default;
    /// All white. A width or height below 1 makes an empty bitmap.
    Bitmap(int width, int height);

    int Width() const { return mWidth; }
    int Height() const { return mHeight; }
    bool IsEmpty() const { return mBits.empty(); }

    /// A dot outside reads as white and is not set. x from the left, y from the top, both from 0.
    bool Get(int x, int y) const;
    void Set(int x, int y, bool black = true);
    void FillBox(int x, int y, int width, int height);
    void Invert();

    /// A row's bits, the leftmost dot in the highest bit of the first byte; 1 = black.
    const std::uint8_t* Row(int y) const {
        return mBits.data() + static_cast<std::size_t>(y) * mRowBytes;
    }
    std::size_t RowBytes() const { return mRowBytes; }

    /// The picture with columns and rows repeated, and leaning: each row is moved right by its
    /// height over the lowest one times lean/100.
    Bitmap Scaled(int horizontally, int vertically) const;
    Bitmap Leaning(int lean) const;
    /// The picture with a white border.
    Bitmap Bordered(int border) const;

  private:
    bool Inside(int x, int y) const { return x >= 0 && y >= 0 && x < mWidth && y < mHeight; }

    int mWidth = 0;
    int mHeight = 0;
    std::size_t mRowBytes = 0;
    std::vector<std::uint8_t> mBits;
};

} // namespace qnsim
