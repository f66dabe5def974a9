#pragma once

#include "DeviceList.h"

#include <vector>

namespace qncomm {
class QNComm;
}

namespace qnterm {

/// The devices that the connected printer has, with their files, then its fonts and its images.
/// With bRefresh the printer is asked for every list, else only for those that are out of date;
/// known is what was read before. Raises what the control raises; a device that the printer does
/// not have is no error.
std::vector<DeviceListing> ReadDevices(qncomm::QNComm& control,
                                       const std::vector<DeviceListing>& known, bool bRefresh);

} // namespace qnterm
