#pragma once

#include "printer/clsPrinterFile.h"

#include <memory>
#include <string>

namespace qnctl {

class Session;

/// The files of a device, listed when the list that is kept is empty or out of date. Raises 1010
/// for a device that the printer does not have.
std::shared_ptr<qncomm::PrinterFiles> FilesOn(Session& session, std::string device,
                                              bool system = false);

} // namespace qnctl
