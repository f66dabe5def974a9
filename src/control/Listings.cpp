// Listings: kept collections of files, images and fonts, and what the last listing said.

#include "Members.h"
#include "common/Numbers.h"
#include "common/Pointer.h"
#include "common/QNError.h"
#include "common/Text.h"
#include "common/modErrorHandling.h"
#include "printer/StorageDevices.h"

#include <algorithm>

namespace qncomm {
namespace {

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
    const auto* const found =
        std::ranges::find_if(StorageDevices, [&](const StorageDevice& device) {
            return lower == device.name || lower + ":" == device.name;
        });
    if (found == StorageDevices.end()) RaiseError(ErrPropertyValue, "QNComm:Files");
    return std::string(found->name);
}

bool HasFiles(const PrinterDeviceTable& table, std::string_view device) {
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
std::shared_ptr<PrinterFiles> QNComm::CachedList(std::string_view device, bool refresh, List list) {
    const Operation operation = Begin();
    const EndBusy endBusy;
    if (!HasFiles(*operation->PrinterDevices(), device)) list(*operation);
    if (refresh || operation->PrinterDevices()->Item(device)->Dirty) list(*operation);
    return operation->PrinterDevices()->Item(device)->Files;
}

std::shared_ptr<PrinterFiles> QNComm::Images(bool brefresh) {
    return CachedList(ImagesDevice, brefresh, [](clsQuorin& quorin) { quorin.Images(); });
}

std::shared_ptr<PrinterFiles> QNComm::Fonts(bool brefresh, bool bFilter) {
    return CachedList(FontsDevice, brefresh,
                      [bFilter](clsQuorin& quorin) { quorin.Fonts(bFilter); });
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
    return CountOf(ImagesDevice);
}

std::int16_t QNComm::FontsCount() const {
    return CountOf(FontsDevice);
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
