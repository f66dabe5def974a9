#include "common/HostFiles.h"

#include "common/RuntimeErrors.h"

#include <utility>

namespace qncomm {

HostFile::HostFile(std::string sPath, std::uintmax_t lLength)
    : mPath(std::move(sPath)), mLength(lLength) {}

std::string HostFile::Read(std::size_t lBytes) {
    std::string bytes;
    while (bytes.size() < lBytes) {
        const std::string more = ReadSome(lBytes - bytes.size());
        if (more.empty()) RaiseRuntimeError(RtInputPastEnd);
        bytes += more;
    }
    return bytes;
}

} // namespace qncomm
