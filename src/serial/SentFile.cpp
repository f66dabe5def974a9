#include "SentFile.h"

#include "platform/FileOpening.h"
#include "platform/SystemErrors.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace qncomm {

SentFile::SentFile(std::string path, bool resume, NameFor nameFor)
    : mPath(std::move(path)), mResume(resume), mNameFor(std::move(nameFor)) {
    mRefusal = OpenToRead(mPath, {}, mFile).text;
}

std::optional<transfer::FileInfo> SentFile::Next() {
    if (std::exchange(mGiven, true) || !mRefusal.empty()) return std::nullopt;
    struct ::stat facts {};
    if (::fstat(mFile.Get(), &facts) != 0) return std::nullopt;
    transfer::FileInfo info;
    info.size = static_cast<std::uint64_t>(facts.st_size);
    info.name = mNameFor(*info.size);
    info.modified = facts.st_mtim.tv_sec;
    info.mode = facts.st_mode & 0777U;
    info.resume = mResume;
    return info;
}

bool SentFile::Read(std::uint64_t offset, std::size_t length, std::string& data,
                    std::string& sReason) {
    data.resize(length);
    ssize_t got = 0;
    do {
        got = ::pread(mFile.Get(), data.data(), length, static_cast<off_t>(offset));
    } while (got < 0 && errno == EINTR);
    data.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    if (got < 0) sReason = mPath + ": " + SystemText(errno);
    return got >= 0;
}

void SentFile::Close(bool /*bWhole*/) {
    mFile.Reset();
}

} // namespace qncomm
