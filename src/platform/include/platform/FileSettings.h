#pragma once

#include "common/RegSettings.h"
#include "common/SettingsDocument.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

class Interrupt;

/// The settings store of one user: a text file that several processes may use at the same time.
///
/// A write takes the file's lock, reads what is there, sets its values and puts a complete new
/// file in the place of the old one, on the disk before it is seen. So processes that write
/// different keys keep each other's, and a writer that is killed leaves the old file. Comments,
/// blank lines and order survive a write (see SettingsDocument). A file that does not parse is
/// moved aside under a name ending in ".damaged-1" (-2, …), with a warning, and the store goes on
/// empty; a file that cannot be moved aside is not overwritten.
class FileSettings : public RegSettings {
  public:
    /// Receives one line for the user; never called while the file is locked by this object.
    using Warning = std::function<void(std::string_view)>;

    /// The file need not exist, nor the folders above it: a write makes them, for this person
    /// alone. A signal of the interrupt, if there is one, ends a write's wait for the lock: it then
    /// throws OperationCancelled. The interrupt must outlive the store.
    explicit FileSettings(std::string sPath, Warning warn = {},
                          const Interrupt* interrupt = nullptr);

    /// "qncomm/settings.ini" under $XDG_CONFIG_HOME, or under ~/.config without it.
    static std::string DefaultPath();

    /// The file's path; where that was a link to a file, the path of the file.
    const std::string& Path() const { return mPath; }

    /// The stored value, sDefault when there is none. The file is read again only when it changed.
    /// A file that cannot be read counts as empty, with a warning; never raises.
    std::string ReadValue(std::string_view sSection, std::string_view sKey,
                          std::string_view sDefault) const override;

    /// The names of the sections that the file has, in their order; read as a value is.
    std::vector<std::string> Sections() const;

    /// Raises 70 (no permission, or the lock is held for 5000 ms), 61 (disk full) or 75, source
    /// "FileSettings:WriteValue", with path and reason in the description. A value that is already
    /// there costs no write.
    void WriteValue(std::string_view sSection, std::string_view sKey,
                    std::string_view sValue) override;
    /// The same for several values in one write: all of them are kept, or none.
    void WriteValues(const std::vector<SettingValue>& values) override;

  private:
    /// Tells one state of the file from another: every write makes a new file.
    struct Version {
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
        std::int64_t size = -1;
        std::int64_t modified = 0;
        bool operator==(const Version&) const = default;
    };

    static Version VersionOf(const std::string& path);
    void Refresh() const;
    const SettingsDocument& Document() const;
    void MoveDamagedAside() const;
    void Read() const;
    void Warn(const std::string& line) const;

    std::string mPath;
    Warning mWarn;
    const Interrupt* mInterrupt;
    mutable SettingsDocument mDocument;
    mutable Version mVersion;
    mutable bool mDamaged = false;
    mutable std::string mLastWarning;
};

} // namespace qncomm
