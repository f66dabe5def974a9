#include "platform/TemporaryFolder.h"

#include "common/RuntimeErrors.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace qncomm {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    std::error_code error;
    const fs::path place = fs::temp_directory_path(error);
    if (error) RaiseRuntimeError(RtPathNotFound);
    std::string path = (place / "qncomm-XXXXXX").string();
    if (::mkdtemp(path.data()) == nullptr) RaiseRuntimeError(RtPathFileAccess);
    mPath = path;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(mPath, ignored);
}

} // namespace qncomm
