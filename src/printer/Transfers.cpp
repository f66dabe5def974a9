// Files that travel by a transfer protocol: the link's operations, with this layer's care for the
// printer's storage.

#include "Exchange.h"
#include "common/QNError.h"
#include "common/Text.h"
#include "common/Utf8.h"
#include "common/modErrorHandling.h"

namespace qncomm {
namespace {

/// What a host file is called on the printer: where the destination names no file, as it is here.
std::string FileOn(const std::string& destination, const std::string& source) {
    const bool named = !destination.empty() && !destination.ends_with(':');
    return named ? destination : destination + PrinterNameOf(source);
}

std::string DeviceOf(std::string_view path) {
    return LowerCase(path.substr(0, path.find(':') + 1));
}

} // namespace

void clsQuorin::KermitUpload(const std::string& sSource, const std::string& sDestination,
                             bool bManual) {
    if (bManual) {
        Link().KermitUpload(sSource, sDestination, true);
        // No table, no listing that is out of date now: the other side, which need be no printer of
        // this system, is not looked for.
        if (PrinterDevices()->IsEmpty()) return;
    } else {
        // Looked for first: a missing host file must not cost the printer's copy.
        if (!mFiles.Exists(sSource)) RaiseError(ErrUploadName, "clsDataLink,Upload");
        ReplaceByKermit(sSource, sDestination);
    }
    MarkTheDevice(sDestination);
}

/// Deletes the printer's copy, sends the new one, and makes the device current again that was so
/// before.
void clsQuorin::ReplaceByKermit(const std::string& source, const std::string& destination) {
    const std::string current = LowerCase(GetCurrentDevice());
    try {
        Kill(FileOn(destination, source));
    } catch (const QNError&) { // NOLINT(bugprone-empty-catch): there need be no old file
    }
    try {
        Link().KermitUpload(source, destination);
    } catch (const QNError&) {
        MarkTheDevice(destination);
        throw;
    }
    const std::string device = DeviceOf(destination);
    if (!device.empty() && !current.empty() && device != current) SetCurrentPrinterDir(current);
}

/// How the transfer has ended is what is reported; a device that is not in the table has no listing
/// that could be out of date. The old file may be gone also where the new one did not come.
void clsQuorin::MarkTheDevice(const std::string& destination) {
    try {
        SetDeviceDirty(destination);
    } catch (const QNError& error) {
        mDesktop.Log(error.Description());
    }
}

void clsQuorin::KermitDownload(const std::string& sSource, const std::string& sDestination,
                               std::int32_t lFileSize) {
    Link().KermitDownload(sSource, sDestination, lFileSize);
}

void clsQuorin::BinaryUpload(const std::string& sSource, std::int16_t iProtocol) {
    Link().BinaryUpload(sSource, iProtocol);
}

void clsQuorin::BinaryDownload(const std::string& sDestination, std::int16_t iProtocol) {
    Link().BinaryDownload(sDestination, iProtocol);
}

} // namespace qncomm
