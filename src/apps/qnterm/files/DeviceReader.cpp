#include "DeviceReader.h"

#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/modErrorHandling.h"
#include "control/QNComm.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

namespace qnterm {
namespace {

constexpr std::array FileDevices = {"c:", "ram:", "tmp:", "card1:", "card2:", "rom:"};

constexpr const char* FontsDevice = "fonts:";
constexpr const char* ImagesDevice = "images:";
constexpr const char* ModelWithoutListing = "R7C";

std::optional<std::int64_t> Count(const std::string& text) {
    return static_cast<std::int64_t>(qncomm::Val(text));
}

/// The listing of a device, nothing when the printer does not have it.
std::optional<DeviceListing> ReadFiles(qncomm::QNComm& control, const std::string& device,
                                       bool refresh) {
    try {
        DeviceListing listing{
            .name = device, .kind = DeviceKind::Files, .files = {}, .used = {}, .free = {}};
        listing.files = control.Files(device, refresh);
        listing.used = Count(control.DeviceUsedMem(device));
        listing.free = Count(control.DeviceFreeMem(device));
        return listing;
    } catch (const qncomm::QNError& error) {
        if (error.Number() == qncomm::ErrDeviceName) return std::nullopt;
        throw;
    }
}

} // namespace

std::vector<DeviceListing> ReadDevices(qncomm::QNComm& control,
                                       const std::vector<DeviceListing>& known, bool bRefresh) {
    std::vector<DeviceListing> devices;
    if (control.PrinterType() == ModelWithoutListing) return devices; // it would tell of each list
    // A list without files is read in any case: to ask for it anew would read it twice.
    const auto anew = [&](const std::string& name) {
        const auto former = std::ranges::find(known, name, &DeviceListing::name);
        return bRefresh && former != known.end() && former->files && !former->files->IsEmpty();
    };
    for (const char* name : FileDevices)
        if (auto listing = ReadFiles(control, name, anew(name)))
            devices.push_back(std::move(*listing));
    devices.push_back({.name = FontsDevice,
                       .kind = DeviceKind::Fonts,
                       .files = control.Fonts(anew(FontsDevice)),
                       .used = {},
                       .free = {}});
    devices.push_back({.name = ImagesDevice,
                       .kind = DeviceKind::Images,
                       .files = control.Images(anew(ImagesDevice)),
                       .used = {},
                       .free = {}});
    return devices;
}

} // namespace qnterm
