#pragma once

// Keeps the printer's storage and setup in a folder of the machine that it runs on.

#include "Setup.h"
#include "Storage.h"

#include <string>

namespace qnsim {

/// One folder per device, one file per stored file, and the setup as a text file. Volatile devices
/// and files that a restart takes away are not kept. Each file is replaced as a whole: what a crash
/// leaves of one that was being written is no file of the printer.
class StateFolder {
  public:
    explicit StateFolder(std::string folder) : mFolder(std::move(folder)) {}

    /// Brings the storage and setup to what the folder holds, or fills a new folder with what they
    /// hold; then follows every change of the storage. False when the folder cannot be read or
    /// written.
    bool Attach(Storage& storage, SetupTree& setup);

    bool SaveSetup(const SetupTree& setup);

    /// Whether everything up to now has been kept.
    bool IsSound() const { return mSound; }

  private:
    bool Load(Storage& storage, SetupTree& setup);
    bool LoadDevice(Storage& storage, Device& device);
    bool Keep(const Device& device, const std::string& name);
    std::string DeviceFolder(const Device& device) const;
    bool WriteFile(const std::string& path, const std::string& content);

    std::string mFolder;
    bool mSound = true;
};

} // namespace qnsim
