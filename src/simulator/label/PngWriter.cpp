#include "label/PngWriter.h"

#include "Text.h"
#include "platform/DurableFile.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio>
#include <filesystem>
#include <png.h>
#include <system_error>

namespace qnsim {
namespace {

/// The library's two structures, released together.
class PngStructures {
  public:
    PngStructures()
        : mWrite(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr)),
          mInfo(mWrite == nullptr ? nullptr : png_create_info_struct(mWrite)) {}
    ~PngStructures() { png_destroy_write_struct(&mWrite, &mInfo); }
    PngStructures(const PngStructures&) = delete;
    PngStructures& operator=(const PngStructures&) = delete;

    bool IsReady() const { return mInfo != nullptr; }
    png_structp Write() const { return mWrite; }
    png_infop Info() const { return mInfo; }

  private:
    png_structp mWrite;
    png_infop mInfo;
};

/// Hands the library's bytes to the file.
void WriteBytes(png_structp write, png_bytep bytes, std::size_t size) {
    auto& file = *static_cast<qncomm::DurableFile*>(png_get_io_ptr(write));
    // NOLINTNEXTLINE(*-reinterpret-cast): bytes are characters
    const bool written = file.Append({reinterpret_cast<const char*>(bytes), size}).Ok();
    if (!written) png_longjmp(write, 1); // passes nothing that has a destructor
}

void LeaveToTheFile(png_structp) {}

/// The library leaves a failed write by a long jump, so nothing in here has a destructor.
bool WriteRows(png_structp write, png_infop info, qncomm::DurableFile& file, const Bitmap& picture,
               int dotsPerMm) {
    if (setjmp(png_jmpbuf(write)) != 0) return false; // NOLINT(cert-err52-cpp): the library's way
    png_set_write_fn(write, &file, WriteBytes, LeaveToTheFile);
    png_set_IHDR(write, info, static_cast<png_uint_32>(picture.Width()),
                 static_cast<png_uint_32>(picture.Height()), 1, PNG_COLOR_TYPE_GRAY,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    const auto dotsPerMetre = static_cast<png_uint_32>(dotsPerMm * 1000);
    png_set_pHYs(write, info, dotsPerMetre, dotsPerMetre, PNG_RESOLUTION_METER);
    png_write_info(write, info);
    png_set_invert_mono(write);
    for (int y = 0; y < picture.Height(); ++y)
        png_write_row(write, picture.Row(y));
    png_write_end(write, info);
    return true;
}

std::string LabelName(int number) {
    std::array<char, 32> name{};
    std::snprintf(name.data(), name.size(), "label-%04d.png", number);
    return name.data();
}

/// The number in a label's file name, 0 for any other name.
int LabelNumber(const std::string& name) {
    const int number =
        name.starts_with("label-") ? static_cast<int>(TextNumber(name.substr(6))) : 0;
    return number > 0 && LabelName(number) == name ? number : 0;
}

} // namespace

bool WritePng(const Bitmap& picture, int dotsPerMm, const std::string& path) {
    const PngStructures png;
    qncomm::DurableFile file;
    return png.IsReady() && file.Create(path).Ok()
           && WriteRows(png.Write(), png.Info(), file, picture, dotsPerMm)
           && file.Commit(qncomm::FileMode::Replaced).Ok();
}

LabelFolder::LabelFolder(std::string folder) : mFolder(std::move(folder)) {
    std::error_code error;
    std::filesystem::create_directories(mFolder, error);
    std::filesystem::directory_iterator entry(mFolder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error))
        mLast = std::max(mLast, LabelNumber(entry->path().filename().string()));
    mUsable = !error;
}

bool LabelFolder::Add(const Bitmap& picture, int dotsPerMm) {
    return mUsable && WritePng(picture, dotsPerMm, mFolder + "/" + LabelName(++mLast));
}

} // namespace qnsim
