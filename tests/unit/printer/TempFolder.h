#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace qncomm::testing {

/// A folder of its own for one test, removed with all that is in it.
class TempFolder {
  public:
    TempFolder() {
        std::random_device random;
        do
            mPath = std::filesystem::temp_directory_path()
                    / ("qncomm-test-" + std::to_string(random()));
        while (!std::filesystem::create_directory(mPath));
    }
    ~TempFolder() { std::filesystem::remove_all(mPath); }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string Path(std::string_view name) const { return (mPath / name).string(); }

    /// Writes a file and returns its path.
    std::string Write(std::string_view name, std::string_view bytes) const {
        std::ofstream(Path(name), std::ios::binary) << bytes;
        return Path(name);
    }

    std::string Read(std::string_view name) const {
        std::ifstream in(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    /// How many files and folders it holds.
    std::size_t Count() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(mPath),
                                                      std::filesystem::directory_iterator()));
    }

  private:
    std::filesystem::path mPath;
};

} // namespace qncomm::testing
