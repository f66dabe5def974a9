#include "support/ScratchFolder.h"

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

bool ScratchFolder::Has(std::string_view sName) const {
    return std::filesystem::exists(File(sName));
}

bool ScratchFolder::IsEmpty() const {
    return std::filesystem::is_empty(mPath);
}

std::string ContentOf(const std::string& sPath) {
    std::ifstream file(sPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace qncomm::testing
