#include "DeviceReader.h"

#include "common/Numbers.h"
#include "control/QNComm.h"
#include "printer/StorageDevices.h"

#include <algorithm>
#include <optional>
#include <string>

namespace qnterm {
namespace {

using qncomm::FontsDevice;
using qncomm::ImagesDevice;

std::optional<std::int64_t> Count(const std::string& text) {
    return static_cast<std::int64_t>(qncomm::Val(text));
}

DeviceListing ReadFiles(qncomm::QNComm& control, const std::string& device, bool refresh) {
    DeviceListing listing{
        .name = device, .kind = DeviceKind::Files, .files = {}, .used = {}, .free = {}};
    listing.files = control.Files(device, refresh);
    listing.used = Count(control.DeviceUsedMem(device));
    listing.free = Count(control.DeviceFreeMem(device));
    return listing;
}

} // namespace

std::vector<DeviceListing> ReadDevices(qncomm::QNComm& control,
                                       const std::vector<DeviceListing>& known, bool bRefresh) {
    std::vector<DeviceListing> devices;
    if (!control.CanList()) return devices; // each list would show a box that says so
    // A list without files is read in any case: to ask for it anew would read it twice.
    const auto anew = [&](std::string_view name) {
        const auto former = std::ranges::find(known, name, &DeviceListing::name);
        return bRefresh && former != known.end() && former->files && !former->files->IsEmpty();
    };
    const std::vector<std::string> names = control.Devices();
    const std::int32_t generation = control.Generation(); // a later change makes all of it former
    for (const std::string& name : names)
        devices.push_back(ReadFiles(control, name, anew(name)));
    devices.push_back({.name = std::string(FontsDevice),
                       .kind = DeviceKind::Fonts,
                       .files = control.Fonts(anew(FontsDevice)),
                       .used = {},
                       .free = {}});
    devices.push_back({.name = std::string(ImagesDevice),
                       .kind = DeviceKind::Images,
                       .files = control.Images(anew(ImagesDevice)),
                       .used = {},
                       .free = {}});
    for (DeviceListing& device : devices)
        device.generation = generation;
    return devices;
}

} // namespace qnterm
