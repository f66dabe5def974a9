// Files to and from the printer.

#include "Members.h"
#include "dialogs/frmBinaryTransfer.h"

namespace qncomm {
namespace {

constexpr std::int32_t AssumedSize = 5120; // bytes of a file whose size is not known

} // namespace

void QNComm::KermitUpload(const std::string& sSource, const std::string& sDestination,
                          bool bManual) {
    Begin()->KermitUpload(sSource, sDestination, bManual);
}

void QNComm::KermitDownload(const std::string& sSource, const std::string& sDestination) {
    const auto members = Wired();
    const std::int32_t size = ListedSize(sSource);
    Operation(members)->KermitDownload(sSource, sDestination, size != 0 ? size : AssumedSize);
}

void QNComm::BinaryUpload(const std::string& sSource, std::int16_t iProtocol) {
    if (MaySend()) Begin()->BinaryUpload(sSource, iProtocol);
}

void QNComm::BinaryDownload(const std::string& sDestination, std::int16_t iProtocol) {
    if (MaySend()) Begin().Link().BinaryDownload(sDestination, iProtocol);
}

/// Asks for protocol and file and runs the transfer. Nothing is transferred unless the dialog was
/// closed by its action button.
void QNComm::TransferFile(std::int16_t action) {
    frmBinaryTransfer form(action, BinaryKermit, mServices.desktop, mServices.files,
                           mServices.hostFiles);
    if (!Outlives([&] { mServices.forms.ShowModal(form); }) || !form.Accepted()) return;
    if (action == PrinterReceives)
        BinaryUpload(form.Filename(), form.Protocol());
    else
        BinaryDownload(form.Filename(), form.Protocol());
}

} // namespace qncomm
