#include "common/HostPath.h"

#include "common/RuntimeErrors.h"

#include <cstdio>
#include <filesystem>
#include <system_error>

namespace qncomm {
namespace {

constexpr char Separator = '/';

} // namespace

bool IsAbsolutePath(std::string_view sPath) {
    return sPath.starts_with(Separator);
}

std::string FolderOf(std::string_view sPath) {
    return std::string(sPath.substr(0, sPath.rfind(Separator) + 1));
}

std::string PathIn(std::string_view sFolder, std::string_view sName) {
    if (IsAbsolutePath(sName)) return std::string(sName);
    std::string path(sFolder);
    if (!path.empty() && !path.ends_with(Separator)) path += Separator;
    return path.append(sName);
}

std::string CurrentFolder() {
    std::error_code error;
    return std::filesystem::current_path(error).string();
}

std::uintmax_t FileSize(const std::string& sPath) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(sPath, error)) return 0;
    const std::uintmax_t size = std::filesystem::file_size(sPath, error);
    return error ? 0 : size;
}

bool CanCreateFile(const std::string& sPath) {
    std::FILE* probe = std::fopen(sPath.c_str(), "wx"); // fails on whatever is there already
    if (probe == nullptr) return false;
    std::fclose(probe);
    std::remove(sPath.c_str());
    return true;
}

void DeleteFile(const std::string& sPath) {
    std::error_code error;
    if (std::filesystem::remove(sPath, error)) return;
    if (!error) RaiseRuntimeError(RtFileNotFound);
    RaiseRuntimeError(error == std::errc::permission_denied ? RtPermissionDenied
                                                            : RtPathFileAccess);
}

} // namespace qncomm
