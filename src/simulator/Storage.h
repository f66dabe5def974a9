#pragma once

// The printer's storage: devices with a size, files on them, and the current directory.

#include "Errors.h"
#include "Model.h"
#include "Text.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qnsim {

struct StoredFile {
    std::string content;
    bool system = false;   ///< shown by a listing with ",A" only, survives a plain FORMAT
    bool permanent = true; ///< survives a restart
    /// The permanent file that this one hides until a restart.
    std::optional<std::string> hidden = std::nullopt;

    /// Bytes that it takes of its device.
    std::uint64_t Size() const { return content.size() + (hidden ? hidden->size() : 0); }
};

struct Device {
    std::string name; ///< lower case, with its colon
    std::uint64_t size = 0;
    bool readOnly = false;
    bool isVolatile = false;
    /// By name, whose case makes no difference and stays as it was first given.
    std::map<std::string, StoredFile, CaselessLess> files;
    std::uint64_t used = 0; ///< kept by Storage

    std::uint64_t Free() const { return size - (used < size ? used : size); }
};

/// A file's place: its device and its name there.
struct FilePlace {
    Device* device = nullptr;
    std::string name;
    Error error = Error::None;
};

class Storage {
  public:
    /// The model's devices and the two that hold fonts and images. capacity replaces the work
    /// device's size unless 0.
    Storage(const Model& model, std::uint64_t capacity);
    Storage(const Storage&) = delete;
    Storage& operator=(const Storage&) = delete;

    /// Called after a file was written or removed (its content is gone then); false when that could
    /// not be kept, which takes the change back.
    using Changed = std::function<bool(const Device& device, const std::string& name)>;
    void OnChanged(Changed changed) { mChanged = std::move(changed); }

    /// A device by its name with or without regard to case, or the current one for an empty name or
    /// "."; null when there is no such device.
    Device* FindDevice(std::string_view name);
    std::vector<Device*> Devices();

    /// Splits "dev:name"; without a device the current one is meant.
    FilePlace Locate(std::string_view path);

    Error ChangeDirectory(std::string_view device);
    const std::string& CurrentDirectory() const { return mCurrent; }

    /// Whole files. Write replaces, and refuses when the device would be full or is write
    /// protected.
    const StoredFile* Find(std::string_view path);
    Error Write(std::string_view path, std::string content);
    Error WriteTo(Device& device, std::string_view name, StoredFile file);
    Error Kill(std::string_view path);
    Error KillOn(Device& device, std::string_view name);
    Error Copy(std::string_view source, std::string_view target);
    Error Format(std::string_view device, bool systemToo);

    /// What a restart takes away: volatile devices and files that are not permanent; those that
    /// such files hid come back.
    void Restart();

    /// Puts a file in place without any check: what the printer left the factory with, or what was
    /// kept.
    void Install(Device& device, std::string name, StoredFile file);

  private:
    using Files = decltype(Device::files);

    /// Takes a file out without a word; returns the one behind it.
    static Files::iterator Remove(Device& device, Files::iterator file);
    void Preinstall(const Model& model);
    bool Tell(const Device& device, const std::string& name) const;
    void RemoveIf(Device& device, const std::function<bool(const StoredFile&)>& condition);

    std::vector<Device> mDevices;
    std::string mCurrent;
    Changed mChanged;
};

} // namespace qnsim
