#include "platform/FileOpening.h"

#include "platform/SystemErrors.h"

#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qncomm {
namespace {

namespace fs = std::filesystem;

using Facts = struct ::stat;

/// Nothing that is opened waits, becomes this program's terminal or is handed to a child.
constexpr int AlwaysFlags = O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

constexpr mode_t OthersMayWrite = S_IWGRP | S_IWOTH;

struct KindRow {
    mode_t kind;
    int error;
    const char* words;
};

constexpr std::array Kinds{
    KindRow{S_IFDIR, EISDIR, "this is a folder"},   KindRow{S_IFIFO, ENOTSUP, "this is a pipe"},
    KindRow{S_IFSOCK, ENOTSUP, "this is a socket"}, KindRow{S_IFCHR, ENOTSUP, "this is a device"},
    KindRow{S_IFBLK, ENOTSUP, "this is a device"},
};

IoResult Refused(const std::string& path, int error, const std::string& words) {
    return {IoStatus::Unsupported, error, path + ": " + words};
}

IoResult WrongKind(const std::string& path, mode_t mode) {
    for (const KindRow& row : Kinds)
        if ((mode & S_IFMT) == row.kind) return Refused(path, row.error, row.words);
    return Refused(path, ENOTSUP, "this is no file");
}

/// Whether what stands there is what the rules ask for.
IoResult Judge(const std::string& path, const FileRules& rules, const Facts& facts) {
    if (!S_ISREG(facts.st_mode))
        return rules.streams && !S_ISDIR(facts.st_mode) ? IoResult{}
                                                        : WrongKind(path, facts.st_mode);
    if (static_cast<std::uint64_t>(facts.st_size) > rules.limit) return FileFailure(EFBIG, path);
    if (!rules.own) return {};
    if (facts.st_uid != ::geteuid()) return Refused(path, EPERM, "it belongs to another user");
    if (facts.st_nlink > 1) return Refused(path, EMLINK, "it has another name as well");
    if ((facts.st_mode & OthersMayWrite) != 0)
        return Refused(path, EPERM, "other users may write it");
    return {};
}

/// Looks before it opens: the opening alone already does something to many devices.
IoResult OpenJudged(const std::string& path, int flags, const FileRules& rules, mode_t mode,
                    Fd& fd) {
    fd.Reset();
    Facts facts{};
    const bool there = (rules.links ? ::stat : ::lstat)(path.c_str(), &facts) == 0;
    if (there && S_ISLNK(facts.st_mode)) return FileFailure(ELOOP, path);
    if (there)
        if (IoResult judged = Judge(path, rules, facts); !judged.Ok()) return judged;
    fd.Reset(::open(path.c_str(), flags | AlwaysFlags | (rules.links ? 0 : O_NOFOLLOW), mode));
    if (!fd && errno == ENXIO) return {IoStatus::Missing, ENXIO, path + ": nobody reads this pipe"};
    if (!fd || ::fstat(fd.Get(), &facts) != 0) return FileFailure(errno, path);
    IoResult judged = Judge(path, rules, facts);
    if (!judged.Ok()) fd.Reset();
    return judged;
}

} // namespace

IoResult OpenToRead(const std::string& sPath, const FileRules& rules, Fd& fd) {
    return OpenJudged(sPath, O_RDONLY, rules, 0, fd);
}

IoResult OpenToWrite(const std::string& sPath, FileStart start, const FileRules& rules,
                     std::uint32_t lPermissions, Fd& fd) {
    const int access = start == FileStart::Kept ? O_RDWR : O_WRONLY;
    const int append = start == FileStart::End ? O_APPEND : 0;
    IoResult opened = OpenJudged(sPath, access | O_CREAT | append, rules, lPermissions, fd);
    // EINVAL: a stream has no length.
    if (opened.Ok() && start == FileStart::Empty && ::ftruncate(fd.Get(), 0) != 0
        && errno != EINVAL) {
        opened = FileFailure(errno, sPath);
        fd.Reset();
    }
    return opened;
}

IoResult ReadWholeFile(const std::string& sPath, const FileRules& rules, std::string& sText) {
    sText.clear();
    Fd file;
    IoResult result = OpenToRead(sPath, rules, file);
    std::array<char, 16384> part; // NOLINT(*-member-init): filled by read
    while (result.Ok()) {
        const ssize_t got = ::read(file.Get(), part.data(), part.size());
        if (got < 0 && errno == EINTR) continue;
        if (got == 0 || (got < 0 && errno == EAGAIN)) return {};
        if (got < 0) result = FileFailure(errno, sPath);
        if (got > 0) sText.append(part.data(), static_cast<std::size_t>(got));
        if (sText.size() > rules.limit) result = FileFailure(EFBIG, sPath);
    }
    sText.clear();
    return result;
}

IoResult ResolveTarget(std::string& sPath) {
    Facts facts{};
    const bool isLink = ::lstat(sPath.c_str(), &facts) == 0 && S_ISLNK(facts.st_mode);
    if (isLink && facts.st_uid != 0 && facts.st_uid != ::geteuid())
        return Refused(sPath, EACCES, "this is another user's link");
    if (::stat(sPath.c_str(), &facts) != 0) {
        // What cannot be looked at says why when it is made; a link to nowhere is replaced itself.
        return {};
    }
    if (IoResult judged = Judge(sPath, {}, facts); !judged.Ok() || !isLink) return judged;
    std::error_code error;
    const fs::path target = fs::canonical(sPath, error);
    if (error) return FileFailure(error.value(), sPath);
    sPath = target.string();
    return {};
}

bool CanCreateFile(const std::string& sPath) {
    const Fd probe(::open(sPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | AlwaysFlags, 0600));
    return probe && ::unlink(sPath.c_str()) == 0;
}

} // namespace qncomm
