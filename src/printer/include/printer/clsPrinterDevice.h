#pragma once

#include "common/Collection.h"
#include "printer/clsPrinterFile.h"

#include <cstdint>
#include <memory>
#include <string>

namespace qncomm {

/// One of the printer's storage devices with what its last listing said.
struct clsPrinterDevice {
    std::string Name;           ///< lower case with the colon, such as "ram:"
    std::int32_t BytesUsed = 0; ///< as its last listing said; 0 before
    std::int32_t BytesFree = 0; ///< as its last listing said; 0 before
    /// Never null. Every listing puts a new collection here; one that a host holds stays as it was.
    std::shared_ptr<PrinterFiles> Files = std::make_shared<PrinterFiles>();
    bool Dirty = true;  ///< the listing is out of date
    bool Valid = false; ///< the connected model has this device
};

/// Devices keyed by their names.
using PrinterDeviceTable = Collection<std::shared_ptr<clsPrinterDevice>>;

} // namespace qncomm
