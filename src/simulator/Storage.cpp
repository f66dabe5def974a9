#include "Storage.h"

#include "Text.h"

#include <algorithm>
#include <array>

namespace qnsim {
namespace {

constexpr std::size_t LongestName = 40;
constexpr std::uint64_t FontSpace = 4ULL * 1024 * 1024;
constexpr std::uint64_t ImageSpace = 4ULL * 1024 * 1024;

struct FactoryFile {
    std::string_view name;
    std::string_view content;
    bool system;
};

constexpr std::array<FactoryFile, 3> RomFiles{{
    {"DEMO.PRG",
     "10 CLL\r\n20 PP 40,40\r\n30 FT \"SW120BSN.1\"\r\n40 PT \"DEMO LABEL\"\r\n50 PF\r\n60 END\r\n",
     false},
    {"TEST.PRG", "10 FOR I=1 TO 10\r\n20 PRINT \"TEST\";I\r\n30 NEXT I\r\n40 END\r\n", false},
    {"KERNEL.SYS", "Quorin kernel image\r\n", true},
}};

constexpr std::array<FactoryFile, 5> WorkFiles{{
    {"STARTUP.PRG", "10 REM Started by the operator\r\n20 PRINT \"READY\"\r\n30 END\r\n", false},
    {"PRICES.DAT", "APPLE,1.20\r\nPEAR,1.45\r\nPLUM,2.10\r\n", false},
    {"LAYOUT.LBL", "CLL:PP 40,40:FT \"SW080BSN.1\":PT \"SHELF\":PF\r\n", false},
    {"CONFIG.SYS", "BOOT=WORK\r\n", true},
    {"ERRORS.SYS", "0\r\n", true},
}};

template <std::size_t count>
void InstallAll(Storage& storage, Device& device, const std::array<FactoryFile, count>& files) {
    for (const FactoryFile& file : files) {
        storage.Install(device, std::string(file.name),
                        {std::string(file.content), file.system, true});
    }
}

} // namespace

Storage::Storage(const Model& model, std::uint64_t capacity) : mCurrent(model.workDevice) {
    for (const DeviceSpec& spec : model.devices) {
        const bool work = spec.name == model.workDevice;
        mDevices.push_back({std::string(spec.name),
                            work && capacity != 0 ? capacity : spec.size,
                            spec.readOnly,
                            spec.isVolatile,
                            {},
                            0});
    }
    mDevices.push_back({"fonts:", FontSpace, false, false, {}, 0});
    mDevices.push_back({"images:", ImageSpace, false, false, {}, 0});
    Preinstall(model);
}

void Storage::Preinstall(const Model& model) {
    InstallAll(*this, *FindDevice("rom:"), RomFiles);
    InstallAll(*this, *FindDevice(model.workDevice), WorkFiles);
}

void Storage::Install(Device& device, std::string name, StoredFile file) {
    StoredFile& place = device.files[std::move(name)];
    device.used = device.used - place.Size() + file.Size();
    place = std::move(file);
}

Storage::Files::iterator Storage::Remove(Device& device, Files::iterator file) {
    device.used -= file->second.Size();
    return device.files.erase(file);
}

Device* Storage::FindDevice(std::string_view name) {
    const std::string wanted = name.empty() || name == "." ? mCurrent : Lower(Trim(name));
    const auto found = std::find_if(mDevices.begin(), mDevices.end(),
                                    [&](const Device& device) { return device.name == wanted; });
    return found == mDevices.end() ? nullptr : &*found;
}

std::vector<Device*> Storage::Devices() {
    std::vector<Device*> all;
    for (Device& device : mDevices)
        all.push_back(&device);
    return all;
}

FilePlace Storage::Locate(std::string_view path) {
    const auto colon = path.find(':');
    const bool bare = colon == std::string_view::npos;
    FilePlace place;
    place.device = FindDevice(bare ? std::string_view() : path.substr(0, colon + 1));
    place.name = Trim(bare ? path : path.substr(colon + 1));
    if (place.device == nullptr) {
        place.error = Error::DeviceNotFound;
    } else if (place.name.empty() || place.name.size() > LongestName
               || place.name.find_first_of(":\"\r\n") != std::string::npos) {
        place.error = Error::BadFileName;
    }
    return place;
}

Error Storage::ChangeDirectory(std::string_view device) {
    const Device* found = FindDevice(device);
    if (found == nullptr) return Error::DeviceNotFound;
    mCurrent = found->name;
    return Error::None;
}

const StoredFile* Storage::Find(std::string_view path) {
    const FilePlace place = Locate(path);
    if (place.error != Error::None) return nullptr;
    const auto found = place.device->files.find(place.name);
    return found == place.device->files.end() ? nullptr : &found->second;
}

bool Storage::Tell(const Device& device, const std::string& name) const {
    return !mChanged || mChanged(device, name);
}

Error Storage::WriteTo(Device& device, std::string_view name, StoredFile file) {
    if (device.readOnly) return Error::WriteProtected;
    const auto old = device.files.find(name);
    const bool replaces = old != device.files.end();
    const std::string kept = replaces ? old->first : std::string(name);
    if (replaces && !file.permanent)
        file.hidden =
            old->second.permanent ? std::optional(old->second.content) : old->second.hidden;
    if (file.Size() > device.Free() + (replaces ? old->second.Size() : 0)) return Error::DeviceFull;
    std::optional<StoredFile> former;
    if (replaces) former = old->second;
    Install(device, kept, std::move(file));
    if (Tell(device, kept)) return Error::None;
    if (former)
        Install(device, kept, std::move(*former));
    else
        Remove(device, device.files.find(kept));
    return Error::DeviceFull;
}

Error Storage::Write(std::string_view path, std::string content) {
    FilePlace place = Locate(path);
    if (place.error != Error::None) return place.error;
    return WriteTo(*place.device, place.name, {std::move(content), false, true});
}

Error Storage::KillOn(Device& device, std::string_view name) {
    if (device.readOnly) return Error::WriteProtected;
    const auto found = device.files.find(name);
    if (found == device.files.end()) return Error::FileNotFound;
    const std::string removed = found->first;
    StoredFile former = found->second;
    Remove(device, found);
    if (Tell(device, removed)) return Error::None;
    Install(device, removed, std::move(former));
    return Error::WriteProtected;
}

Error Storage::Kill(std::string_view path) {
    const FilePlace place = Locate(path);
    return place.error != Error::None ? place.error : KillOn(*place.device, place.name);
}

Error Storage::Copy(std::string_view source, std::string_view target) {
    const FilePlace from = Locate(source);
    if (from.error != Error::None) return from.error;
    const auto found = from.device->files.find(from.name);
    if (found == from.device->files.end()) return Error::FileNotFound;
    // A target that names a device alone keeps the source's name.
    std::string to(target);
    if (!to.empty() && to.back() == ':') to += from.name;
    return Write(to, found->second.content);
}

void Storage::RemoveIf(Device& device, const std::function<bool(const StoredFile&)>& condition) {
    for (auto file = device.files.begin(); file != device.files.end();) {
        if (!condition(file->second)) {
            ++file;
            continue;
        }
        const std::string name = file->first;
        file = Remove(device, file);
        static_cast<void>(Tell(device, name)); // the folder is not sound then, which is told
    }
}

Error Storage::Format(std::string_view device, bool systemToo) {
    Device* found = FindDevice(device);
    if (found == nullptr) return Error::DeviceNotFound;
    if (found->readOnly) return Error::WriteProtected;
    RemoveIf(*found, [systemToo](const StoredFile& file) { return systemToo || !file.system; });
    return Error::None;
}

void Storage::Restart() {
    for (Device& device : mDevices) {
        RemoveIf(device, [&device](const StoredFile& file) {
            return device.isVolatile || !(file.permanent || file.hidden);
        });
        for (auto& [name, file] : device.files) {
            if (file.hidden) Install(device, name, {*file.hidden, file.system, true});
        }
    }
    mCurrent = mDevices.front().name;
}

} // namespace qnsim
