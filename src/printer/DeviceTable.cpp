// The eight storage devices and which of them the connected model has.

#include "Exchange.h"
#include "Models.h"
#include "common/QNError.h"
#include "common/Text.h"
#include "common/modErrorHandling.h"
#include "printer/Listing.h"
#include "printer/StorageDevices.h"

#include <utility>

namespace qncomm {
namespace {

void AddDevice(PrinterDeviceTable& table, std::string_view name) {
    auto device = std::make_shared<clsPrinterDevice>();
    device->Name = name;
    table.Add(std::move(device), name);
}

std::shared_ptr<PrinterDeviceTable> NewTable() {
    auto table = std::make_shared<PrinterDeviceTable>();
    for (const StorageDevice& device : StorageDevices)
        AddDevice(*table, device.name);
    AddDevice(*table, FontsDevice);
    AddDevice(*table, ImagesDevice);
    return table;
}

/// The device that a path starts with, lower case and with its colon; empty when it has none.
std::string DevicePart(std::string_view path) {
    return LowerCase(Trim(path.substr(0, path.find(':') + 1)));
}

std::shared_ptr<clsPrinterDevice> FindDevice(const PrinterDeviceTable& table,
                                             const std::string& name) {
    return table.Contains(name) ? table.Item(name) : nullptr;
}

} // namespace

const std::shared_ptr<PrinterDeviceTable>& clsQuorin::PrinterDevices() {
    if (!mPrinterDevices) mPrinterDevices = std::make_shared<PrinterDeviceTable>();
    return mPrinterDevices;
}

void clsQuorin::SetPrinterDevices(std::shared_ptr<PrinterDeviceTable> devices) {
    mPrinterDevices = std::move(devices);
    mModelMissing = false;
    if (mPrinterDevices) mTableGeneration = Link().Live().generation;
}

void clsQuorin::ForgetFormerPrinter() {
    if (mTableGeneration != Link().Live().generation) SetPrinterDevices(nullptr);
}

/// Builds the table when there is none, or when the one that stands was built before a printer
/// could tell its model.
void clsQuorin::InitFileSystem() {
    if (!PrinterDevices()->IsEmpty() && !mModelMissing) return;
    const std::string code = PrinterType();
    Link(); // a host may have taken this object down meanwhile
    mPrinterDevices = NewTable();
    mTableGeneration = Link().Live().generation;
    mModelMissing = code.empty();
    const PrinterModel* model = FindModel(code);
    if (model == nullptr) RaiseError(ErrPrinterModel, "clsQuorin:InitFileSystem");
    for (const std::string_view name : model->devices)
        if (!name.empty()) mPrinterDevices->Item(name)->Valid = true;
}

std::vector<std::string> clsQuorin::Devices() {
    InitFileSystem();
    std::vector<std::string> names;
    for (const StorageKind kind : {StorageKind::Memory, StorageKind::Card, StorageKind::ReadOnly})
        for (const StorageDevice& device : StorageDevices)
            if (device.kind == kind && Has(device.name)) names.emplace_back(device.name);
    return names;
}

bool clsQuorin::CanList() {
    const PrinterModel* model = FindModel(PrinterType());
    return model == nullptr || model->lists;
}

/// Whether the table that stands says that the printer has the device.
bool clsQuorin::Has(std::string_view name) {
    const auto found = FindDevice(*PrinterDevices(), std::string(name));
    return found && found->Valid;
}

std::shared_ptr<clsPrinterDevice> clsQuorin::Device(std::string_view name) {
    return PrinterDevices()->Item(name);
}

void clsQuorin::IsValidPrinterDevice(std::string_view name) {
    constexpr std::string_view source = "clsQuorin:IsValidPrinterDevice";
    const std::string device = DevicePart(name);
    if (device.empty()) RaiseError(ErrDeviceName, source);
    InitFileSystem();
    if (!Has(device)) RaiseError(ErrDeviceName, source);
}

void clsQuorin::SetDeviceDirty(std::string_view path) {
    constexpr std::string_view source = "clsQuorin:SetDeviceDirty";
    std::string device = DevicePart(path);
    if (device.empty()) device = DevicePart(GetCurrentDevice());
    if (device.empty()) RaiseError(ErrDeviceName, source);
    InitFileSystem();
    const auto found = FindDevice(*PrinterDevices(), device);
    if (!found) RaiseError(ErrDeviceName, source);
    found->Dirty = true;
}

/// The device that the printer's current directory is on; empty when it does not say.
std::string clsQuorin::GetCurrentDevice() {
    const auto reply = Run({.line = "FILES " + Quoted("."), .timeout = 3000});
    for (const std::string& line : reply.value_or(Reply{}))
        if (const auto device = ParseDeviceWord(line)) return *device;
    return {};
}

bool clsQuorin::IsExtendedModel() {
    const PrinterModel* model = FindModel(PrinterType());
    return model != nullptr && model->extended;
}

bool clsQuorin::SystemLevelAllowed(bool flag) {
    return flag && IsExtendedModel();
}

/// The name with the model's work device in front when it names none.
std::string clsQuorin::OnWorkDevice(std::string_view name) {
    if (name.find(':') != std::string_view::npos) return std::string(name);
    const PrinterModel* model = FindModel(PrinterType());
    return std::string(model != nullptr ? model->workDevice : "").append(name);
}

} // namespace qncomm
