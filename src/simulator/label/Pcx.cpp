#include "label/Pcx.h"

#include <cstddef>
#include <vector>

namespace qnsim {
namespace {

constexpr std::size_t HeaderSize = 128;
constexpr int LargestImageSide = 8192;

int Byte(std::string_view file, std::size_t at) {
    return static_cast<unsigned char>(file[at]);
}

int Word(std::string_view file, std::size_t at) {
    return Byte(file, at) | (Byte(file, at + 1) << 8);
}

struct Header {
    int width = 0;
    int height = 0;
    int rowBytes = 0;
    bool packed = false;
    bool oneIsBlack = false;
};

/// A palette that makes the second colour the darker one turns the picture's meaning over.
bool SecondColourIsDarker(std::string_view file) {
    constexpr std::size_t palette = 16;
    const int first = Byte(file, palette) + Byte(file, palette + 1) + Byte(file, palette + 2);
    const int second = Byte(file, palette + 3) + Byte(file, palette + 4) + Byte(file, palette + 5);
    return second < first;
}

std::optional<Header> ReadHeader(std::string_view file) {
    if (file.size() < HeaderSize || Byte(file, 0) != 10) return std::nullopt;
    const int version = Byte(file, 1);
    const bool monochrome = Byte(file, 3) == 1 && Byte(file, 65) == 1;
    if ((version != 3 && version != 5) || Byte(file, 2) > 1 || !monochrome) return std::nullopt;
    Header header;
    header.width = Word(file, 8) - Word(file, 4) + 1;
    header.height = Word(file, 10) - Word(file, 6) + 1;
    header.rowBytes = Word(file, 66);
    header.packed = Byte(file, 2) == 1;
    header.oneIsBlack = version == 5 && SecondColourIsDarker(file);
    const bool fits = header.width >= 1 && header.width <= LargestImageSide && header.height >= 1
                      && header.height <= LargestImageSide && header.rowBytes * 8 >= header.width;
    return fits ? std::optional(header) : std::nullopt;
}

/// Hands out the picture's bytes one by one, runs unpacked.
class Unpacker {
  public:
    Unpacker(std::string_view data, bool packed) : mData(data), mPacked(packed) {}

    std::optional<unsigned> Next() {
        constexpr unsigned runMark = 0xC0;
        while (mLeft == 0) {
            const std::optional<unsigned> byte = Take();
            if (!byte || !mPacked || *byte < runMark) return byte;
            const std::optional<unsigned> value = Take();
            if (!value) return std::nullopt;
            mLeft = *byte - runMark;
            mValue = *value;
        }
        --mLeft;
        return mValue;
    }

  private:
    std::optional<unsigned> Take() {
        if (mAt >= mData.size()) return std::nullopt;
        return static_cast<unsigned char>(mData[mAt++]);
    }

    std::string_view mData;
    bool mPacked;
    std::size_t mAt = 0;
    unsigned mLeft = 0;
    unsigned mValue = 0;
};

} // namespace

std::optional<Bitmap> ReadPcx(std::string_view file) {
    const auto header = ReadHeader(file);
    if (!header) return std::nullopt;
    Unpacker bytes(file.substr(HeaderSize), header->packed);
    Bitmap picture(header->width, header->height);
    for (int y = 0; y < header->height; ++y) {
        for (int column = 0; column < header->rowBytes; ++column) {
            const auto byte = bytes.Next();
            if (!byte) return std::nullopt;
            for (int bit = 0; bit < 8; ++bit) {
                const bool one = (*byte & (0x80U >> static_cast<unsigned>(bit))) != 0;
                if (one == header->oneIsBlack && column * 8 + bit < header->width)
                    picture.Set(column * 8 + bit, y);
            }
        }
    }
    return picture;
}

} // namespace qnsim
