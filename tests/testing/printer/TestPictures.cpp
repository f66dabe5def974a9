#include "testing/printer/TestPictures.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <png.h>

namespace qncomm::testing {
namespace {

void PutWord(std::string& header, std::size_t at, int value) {
    header[at] = static_cast<char>(value % 256);
    header[at + 1] = static_cast<char>(value / 256);
}

std::string Pack(const std::string& row) {
    std::string packed;
    for (std::size_t i = 0; i < row.size();) {
        std::size_t run = 1;
        while (run < 63 && i + run < row.size() && row[i + run] == row[i])
            ++run;
        const bool marked = static_cast<unsigned char>(row[i]) >= 0xC0;
        if (run > 1 || marked) packed += static_cast<char>(0xC0 + run);
        packed += row[i];
        i += run;
    }
    return packed;
}

} // namespace

std::string TestPcx(int width, int height, const std::function<bool(int, int)>& black) {
    const auto frame = [&](int x, int y) {
        return x == 0 || y == 0 || x == width - 1 || y == height - 1 || x == y;
    };
    std::string file(128, '\0');
    file[0] = 10;
    file[1] = 5;
    file[2] = 1;
    file[3] = 1;
    PutWord(file, 8, width - 1);
    PutWord(file, 10, height - 1);
    for (std::size_t i = 19; i < 22; ++i)
        file[i] = '\xFF';
    file[65] = 1;
    const int rowBytes = (width + 7) / 8;
    PutWord(file, 66, rowBytes);
    for (int y = 0; y < height; ++y) {
        std::string row(static_cast<std::size_t>(rowBytes), '\xFF');
        for (int x = 0; x < width; ++x) {
            if (!(black ? black(x, y) : frame(x, y))) continue;
            char& byte = row[static_cast<std::size_t>(x / 8)];
            byte = static_cast<char>(static_cast<unsigned char>(byte) & ~(0x80U >> (x % 8U)));
        }
        file += Pack(row);
    }
    return file;
}

std::string TestFont() {
    std::ifstream file("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", std::ios::binary);
    EXPECT_TRUE(file.is_open()) << "the font of the package fonts-dejavu-core is missing";
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> ReadPng(const std::string& path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_NE(png_image_begin_read_from_file(&image, path.c_str()), 0) << path << image.message;
    image.format = PNG_FORMAT_GRAY;
    std::vector<png_byte> dots(PNG_IMAGE_SIZE(image));
    EXPECT_NE(png_image_finish_read(&image, nullptr, dots.data(), 0, nullptr), 0) << path;
    std::vector<std::string> rows;
    for (png_uint_32 y = 0; y < image.height; ++y) {
        std::string row;
        for (png_uint_32 x = 0; x < image.width; ++x)
            row += dots[std::size_t{y} * image.width + x] < 128 ? '#' : '.';
        rows.push_back(std::move(row));
    }
    return rows;
}

} // namespace qncomm::testing
