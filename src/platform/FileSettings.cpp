#include "platform/FileSettings.h"

#include "SettingsFile.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "platform/DurableFile.h"
#include "platform/FileOpening.h"
#include "platform/SystemErrors.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qncomm {
namespace {

constexpr std::int32_t LockTimeoutMs = 5000;

/// Bytes: some ten thousand connections with all that is kept of them.
constexpr std::uint64_t LargestSettings = 8U << 20U;

std::int32_t RuntimeNumber(int systemError) {
    static constexpr std::array<std::pair<int, std::int32_t>, 7> table{{
        {EACCES, RtPermissionDenied},
        {EPERM, RtPermissionDenied},
        {EROFS, RtPermissionDenied},
        {EWOULDBLOCK, RtPermissionDenied},
        {ENOSPC, RtDiskFull},
        {EDQUOT, RtDiskFull},
        {EFBIG, RtDiskFull},
    }};
    for (const auto& [error, number] : table)
        if (error == systemError) return number;
    return RtPathFileAccess;
}

/// A file that is not there reads as an empty text.
IoResult ReadSettings(const std::string& path, std::string& text) {
    IoResult result = ReadWholeFile(path, {.limit = LargestSettings}, text);
    return result.systemNumber == ENOENT ? IoResult{} : result;
}

IoResult WriteSettings(const std::string& path, const std::string& text) {
    if (text.size() > LargestSettings) return FileFailure(EFBIG, path);
    return ReplaceFile(path, text, FileMode::Private);
}

void RaiseUnless(const IoResult& result) {
    if (result.Ok()) return;
    if (result.systemNumber == ECANCELED) throw OperationCancelled();
    const std::int32_t number = RuntimeNumber(result.systemNumber);
    throw QNError(number, "FileSettings:WriteValue",
                  RuntimeErrorText(number) + " (" + result.text + ")");
}

std::string HomeFolder() {
    const char* home = std::getenv("HOME"); // NOLINT(concurrency-mt-unsafe)
    if (home != nullptr && *home != '\0') return home;
    const passwd* entry = ::getpwuid(::getuid()); // NOLINT(concurrency-mt-unsafe)
    return entry != nullptr ? entry->pw_dir : "/";
}

} // namespace

FileSettings::FileSettings(std::string sPath, Warning warn, const Interrupt* interrupt)
    : mPath(std::move(sPath)), mWarn(std::move(warn)), mInterrupt(interrupt) {
    // A link to the file stays a link: what it points at is replaced, not the link itself. Another
    // user's is left for the writer to refuse.
    std::string target = mPath;
    if (!ResolveTarget(target).Ok()) return;
    std::error_code ignored;
    const auto path = std::filesystem::canonical(target, ignored);
    if (!ignored) mPath = path.string();
}

std::string FileSettings::DefaultPath() {
    const char* config = std::getenv("XDG_CONFIG_HOME"); // NOLINT(concurrency-mt-unsafe)
    // A relative path in this variable is to be ignored.
    const bool usable = config != nullptr && *config == '/';
    return (usable ? std::string(config) : HomeFolder() + "/.config") + "/qncomm/settings.ini";
}

std::string FileSettings::ReadValue(std::string_view sSection, std::string_view sKey,
                                    std::string_view sDefault) const {
    return Document().Value(sSection, sKey).value_or(std::string(sDefault));
}

std::vector<std::string> FileSettings::Sections() const {
    return Document().Sections();
}

const SettingsDocument& FileSettings::Document() const {
    Refresh();
    if (mDamaged) {
        MoveDamagedAside();
        Refresh();
    }
    return mDocument;
}

void FileSettings::WriteValue(std::string_view sSection, std::string_view sKey,
                              std::string_view sValue) {
    WriteValues({{std::string(sSection), std::string(sKey), std::string(sValue)}});
}

void FileSettings::WriteValues(const std::vector<SettingValue>& values) {
    RaiseUnless(MakeFoldersFor(mPath));
    std::string movedTo;
    {
        const FileLock lock(mPath, LockTimeoutMs, mInterrupt);
        RaiseUnless(lock.Result());
        std::string text;
        RaiseUnless(ReadSettings(mPath, text));
        auto document = SettingsDocument::Parse(text);
        if (!document) {
            RaiseUnless(MoveAside(mPath, movedTo));
            document.emplace();
        }
        bool changed = false;
        for (const auto& [section, key, value] : values) {
            if (document->Value(section, key) == value) continue;
            document->SetValue(section, key, value);
            changed = true;
        }
        if (changed) RaiseUnless(WriteSettings(mPath, document->Text()));
    }
    if (!movedTo.empty()) Warn("The settings in " + mPath + " were damaged; kept as " + movedTo);
}

FileSettings::Version FileSettings::VersionOf(const std::string& path) {
    struct ::stat now {};
    if (::stat(path.c_str(), &now) != 0) return {};
    return {now.st_dev, now.st_ino, now.st_size,
            now.st_mtim.tv_sec * std::int64_t{1'000'000'000} + now.st_mtim.tv_nsec};
}

void FileSettings::Refresh() const {
    const Version now = VersionOf(mPath);
    if (now == mVersion) return;
    mVersion = now;
    Read();
}

void FileSettings::Read() const {
    mDocument = {};
    mDamaged = false;
    std::string text;
    if (const IoResult result = ReadSettings(mPath, text); !result.Ok()) {
        Warn("The settings cannot be read: " + result.text);
        return;
    }
    auto document = SettingsDocument::Parse(text);
    mDamaged = !document;
    if (!document) return;
    mDocument = std::move(*document);
    if (const std::size_t line = mDocument.StrayLine(); line != 0)
        Warn("Line " + std::to_string(line) + " of " + mPath + " is no setting and is passed over");
}

void FileSettings::MoveDamagedAside() const {
    mDamaged = false;
    std::string movedTo;
    IoResult result;
    {
        const FileLock lock(mPath, LockTimeoutMs, mInterrupt);
        result = lock.Result();
        std::string text;
        if (result.Ok()) result = ReadSettings(mPath, text);
        if (result.Ok() && !SettingsDocument::Parse(text)) result = MoveAside(mPath, movedTo);
    }
    if (!result.Ok())
        Warn("The settings in " + mPath + " are damaged and stay: " + result.text);
    else if (!movedTo.empty())
        Warn("The settings in " + mPath + " were damaged; kept as " + movedTo);
}

void FileSettings::Warn(const std::string& line) const {
    if (mWarn && line != mLastWarning) mWarn(line);
    mLastWarning = line;
}

} // namespace qncomm
