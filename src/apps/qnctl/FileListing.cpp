#include "FileListing.h"

#include "Session.h"

#include "common/QNError.h"
#include "common/modErrorHandling.h"

namespace qnctl {

std::shared_ptr<qncomm::PrinterFiles> FilesOn(Session& session, std::string device, bool system) {
    // The control knows the devices that hold files; of any other name the layer says itself what
    // it thinks, as it does of a model that lists nothing.
    try {
        if (session.Control().CanList()) return session.Control().Files(device, false, system);
    } catch (const qncomm::QNError& error) {
        if (error.Number() != qncomm::ErrPropertyValue) throw;
    }
    session.Printer().Files(device, false, system);
    return session.Printer().PrinterDevices()->Item(device)->Files;
}

} // namespace qnctl
