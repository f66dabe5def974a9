#include "common/HostPath.h"

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

} // namespace qncomm
