#include "ReceivedFile.h"

#include "platform/SystemErrors.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace qncomm {
namespace {

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool SyncFolder(const std::string& folder) {
    const Fd fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return fd && ::fsync(fd.Get()) == 0;
}

/// What a file made here would get: read and write for all that the person's mask leaves.
mode_t UsualMode() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666U & ~mask;
}

} // namespace

ReceivedFile::ReceivedFile(std::string path, TransferPreferences preferences,
                           std::function<void(const transfer::FileInfo&)> announced)
    : mTarget(std::move(path)), mPreferences(preferences), mAnnounced(std::move(announced)) {}

ReceivedFile::~ReceivedFile() {
    if (mFile) Abandon();
}

std::string ReceivedFile::Reason() const {
    return mTarget + ": " + SystemText(errno);
}

bool ReceivedFile::Open() {
    struct ::stat there {};
    if (::stat(mTarget.c_str(), &there) == 0 && S_ISDIR(there.st_mode)) {
        errno = EISDIR;
        return false;
    }
    if (mPreferences.resume) {
        mBeside = mTarget + ".part";
        mFile.Reset(::open(mBeside.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    } else {
        mBeside = mTarget + ".XXXXXX";
        mFile.Reset(::mkostemp(mBeside.data(), O_CLOEXEC));
    }
    return static_cast<bool>(mFile);
}

transfer::OfferDecision ReceivedFile::Offer(const transfer::FileInfo& file) {
    if (std::exchange(mOffered, true))
        return {transfer::AnswerKind::Skip, 0, "one file was asked for"};
    mInfo = file;
    mAnnounced(file);
    if (!Open()) return {transfer::AnswerKind::Failed, 0, Reason()};
    const off_t have = mPreferences.resume ? ::lseek(mFile.Get(), 0, SEEK_END) : 0;
    auto offset = static_cast<std::uint64_t>(have > 0 ? have : 0);
    const bool ofAnother = file.size && offset > *file.size;
    if (offset > 0 && (ofAnother || !file.fromAnywhere)) {
        if (::ftruncate(mFile.Get(), 0) != 0) return {transfer::AnswerKind::Failed, 0, Reason()};
        offset = 0;
    }
    return {transfer::AnswerKind::Ok, offset, {}};
}

bool ReceivedFile::Write(std::uint64_t offset, std::string_view data, std::string& sReason) {
    while (!data.empty()) {
        const ssize_t count =
            ::pwrite(mFile.Get(), data.data(), data.size(), static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) {
            sReason = Reason();
            return false;
        }
        data.remove_prefix(static_cast<std::size_t>(count));
        offset += static_cast<std::uint64_t>(count);
    }
    return true;
}

bool ReceivedFile::Close(bool bWhole, std::string& sReason) {
    if (!mFile) return !bWhole;
    if (!bWhole) {
        Abandon();
        return true;
    }
    if (PutInPlace()) return true;
    sReason = Reason();
    Abandon();
    return false;
}

bool ReceivedFile::PutInPlace() {
    const bool tellsMode = mPreferences.preserve && mInfo.mode;
    if (::fchmod(mFile.Get(), tellsMode ? *mInfo.mode & 0777U : UsualMode()) != 0) return false;
    if (mPreferences.preserve && mInfo.modified) {
        const timespec times[2] = {{0, UTIME_OMIT}, {static_cast<time_t>(*mInfo.modified), 0}};
        if (::futimens(mFile.Get(), times) != 0) return false;
    }
    if (::fsync(mFile.Get()) != 0 || ::rename(mBeside.c_str(), mTarget.c_str()) != 0) return false;
    mFile.Reset();
    return SyncFolder(FolderOf(mTarget));
}

void ReceivedFile::Abandon() {
    mFile.Reset();
    if (!mPreferences.resume) ::unlink(mBeside.c_str());
}

} // namespace qncomm
