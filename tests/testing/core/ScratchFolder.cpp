#include "testing/core/ScratchFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace qncomm::testing {

ScratchFolder::ScratchFolder()
    : mPath((std::filesystem::temp_directory_path() / "qncomm-XXXXXX").string()) {
    if (mkdtemp(mPath.data()) == nullptr) throw std::runtime_error("no folder for the test");
}

ScratchFolder::~ScratchFolder() {
    std::error_code error;
    std::filesystem::remove_all(mPath, error);
}

std::string ScratchFolder::File(std::string_view sName) const {
    return (std::filesystem::path(mPath) / sName).string();
}

std::string ScratchFolder::Write(std::string_view sName, std::string_view sContent) const {
    std::ofstream file(File(sName), std::ios::binary);
    file.write(sContent.data(), static_cast<std::streamsize>(sContent.size()));
    return File(sName);
}

std::string ScratchFolder::MakeFolder(std::string_view sName) const {
    std::filesystem::create_directories(File(sName));
    return File(sName);
}

std::string ScratchFolder::Read(std::string_view sName) const {
    return ContentOf(File(sName));
}

bool ScratchFolder::Has(std::string_view sName) const {
    return std::filesystem::exists(File(sName));
}

std::size_t ScratchFolder::Count() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(mPath),
                                                  std::filesystem::directory_iterator()));
}

std::string ContentOf(const std::string& sPath) {
    std::ifstream file(sPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace qncomm::testing
