// Listings: kept collections of files, images and fonts, and what the last listing said.

#include "Members.h"
#include "common/Numbers.h"
#include "common/Pointer.h"
#include "common/QNError.h"
#include "common/Text.h"
#include "common/modErrorHandling.h"

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

constexpr std::array<std::string_view, 6> ListedDevices = {
    "ram:", "rom:", "card1:", "card2:", "c:", "tmp:"};

/// Shows the hourglass in place of the default pointer. True when another operation shows it
/// already.
bool BeginBusy() {
    if (Pointer::Screen().Shape() == PointerHourglass) return true;
    if (Pointer::Screen().Shape() == PointerDefault) Pointer::Screen().Set(PointerHourglass);
    return false;
}

/// The device that a name stands for: lower case, with its colon.
std::string DeviceNamed(std::string_view name) {
    const std::string lower = LowerCase(name);
    const auto found = std::ranges::find_if(ListedDevices, [&](std::string_view device) {
        return lower == device || lower == device.substr(0, device.size() - 1);
    });
    if (found == ListedDevices.end()) RaiseError(ErrPropertyValue, "QNComm:Files");
    return std::string(*found);
}

bool HasFiles(const PrinterDeviceTable& table, const std::string& device) {
    return table.Contains(device) && !table.Item(device)->Files->IsEmpty();
}

} // namespace

EndBusy::~EndBusy() {
    Pointer::Screen().Set(PointerDefault);
}

std::shared_ptr<PrinterFiles> QNComm::Files(const std::string& sDeviceName, bool brefresh,
                                            bool bShowSystemFiles) {
    const Operation operation = Begin();
    if (BeginBusy()) return nullptr;
    const EndBusy endBusy;
    std::string device = DeviceNamed(sDeviceName);
    if (!HasFiles(*operation->PrinterDevices(), device))
        operation->Files(device, false, bShowSystemFiles);
    const auto record = operation->PrinterDevices()->Item(device);
    if (!record->Valid) RaiseError(ErrDeviceName, "QNComm:Property Get Files");
    if (brefresh || record->Dirty) operation->Files(device, brefresh, bShowSystemFiles);
    return operation->PrinterDevices()->Item(device)->Files;
}

template <class List>
std::shared_ptr<PrinterFiles> QNComm::CachedList(const std::string& device, bool refresh,
                                                 List list) {
    const Operation operation = Begin();
    const EndBusy endBusy;
    if (!HasFiles(*operation->PrinterDevices(), device)) list(*operation);
    if (refresh || operation->PrinterDevices()->Item(device)->Dirty) list(*operation);
    return operation->PrinterDevices()->Item(device)->Files;
}

std::shared_ptr<PrinterFiles> QNComm::Images(bool brefresh) {
    return CachedList("images:", brefresh, [](clsQuorin& quorin) { quorin.Images(); });
}

std::shared_ptr<PrinterFiles> QNComm::Fonts(bool brefresh, bool bFilter) {
    return CachedList("fonts:", brefresh, [bFilter](clsQuorin& quorin) { quorin.Fonts(bFilter); });
}

std::int16_t QNComm::CountOf(std::string_view device) const {
    try {
        const auto members = Wired();
        return static_cast<std::int16_t>(std::min<std::size_t>(
            members->quorin.PrinterDevices()->Item(device)->Files->Count(), INT16_MAX));
    } catch (const QNError&) { // no listing yet
        return 0;
    }
}

std::int16_t QNComm::ImagesCount() const {
    return CountOf("images:");
}

std::int16_t QNComm::FontsCount() const {
    return CountOf("fonts:");
}

/// A printer file's size as its device's listing has it; 0 when that cannot be told.
std::int32_t QNComm::ListedSize(const std::string& path) {
    try {
        const std::size_t name = path.find(':') + 1;
        const auto files = Files(path.substr(0, name));
        return files ? files->Item(path.substr(name))->Size : 0;
    } catch (const QNError&) { // the transfer itself will tell what is wrong
        return 0;
    }
}

std::string QNComm::DeviceUsedMem(std::string_view sDev) const {
    return ToText(Wired()->quorin.PrinterDevices()->Item(sDev)->BytesUsed);
}

std::string QNComm::DeviceFreeMem(std::string_view sDev) const {
    return ToText(Wired()->quorin.PrinterDevices()->Item(sDev)->BytesFree);
}

} // namespace qncomm
