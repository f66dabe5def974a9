// One command line each: what is deleted, copied, renamed, formatted and made current.

#include "Exchange.h"
#include "printer/StorageDevices.h"

#include <algorithm>

namespace qncomm {
namespace {

constexpr std::int32_t CopyTimeout = 45000;

/// What FormatAll leaves alone: what is no storage, and what cannot be written.
bool IsNeverFormatted(std::string_view name) {
    const auto* const found = std::ranges::find(StorageDevices, name, &StorageDevice::name);
    if (found == StorageDevices.end()) return name == FontsDevice || name == ImagesDevice;
    return found->kind == StorageKind::ReadOnly;
}

} // namespace

void clsQuorin::Kill(std::string_view sFullName) {
    Run({.line = "KILL " + Quoted(sFullName), .timeout = 10000, .dirty = {std::string(sFullName)}});
}

void clsQuorin::SetCurrentPrinterDir(std::string_view sDevice) {
    Run({.line = "CHDIR " + Quoted(sDevice)});
}

void clsQuorin::ChDir(std::string_view sDevName) {
    IsValidPrinterDevice(sDevName);
    Run({.line = "Chdir" + Quoted(sDevName), .timeout = 500});
}

void clsQuorin::FormatPrinterDevice(std::string_view sDevName, bool bSystemLevel) {
    IsValidPrinterDevice(sDevName);
    Run({.line = "FORMAT" + Quoted(sDevName),
         .timeout = 2500,
         .systemLevel = bSystemLevel,
         .dirty = {std::string(sDevName)}});
}

void clsQuorin::FormatAll(bool bSystemLevel) {
    const auto devices = PrinterDevices(); // stays while the table may be built anew
    for (const auto& device : *devices)
        if (!IsNeverFormatted(device->Name)) FormatPrinterDevice(device->Name, bSystemLevel);
}

void clsQuorin::CopyFile(std::string_view sSource, std::string_view sDestination) {
    Run({.line = "COPY " + Quoted(sSource) + "," + Quoted(sDestination),
         .timeout = CopyTimeout,
         .dirty = {std::string(sDestination)}});
}

void clsQuorin::RenameFile(std::string_view sOldName, std::string_view sNewName) {
    Run({.line = "COPY " + Quoted(sOldName) + "," + Quoted(sNewName) + ":KILL " + Quoted(sOldName),
         .timeout = CopyTimeout,
         .dirty = {std::string(sOldName), std::string(sNewName)}});
}

} // namespace qncomm
