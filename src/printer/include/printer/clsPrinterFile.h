#pragma once

#include "common/Collection.h"

#include <cstdint>
#include <memory>
#include <string>

namespace qncomm {

/// A file, an image or a font as the printer lists it.
struct clsPrinterFile {
    std::string Name;      ///< as the printer lists it, without a device
    std::int32_t Size = 0; ///< bytes; 0 for a font
};

/// Files in the order of the listing, keyed by their upper-case names.
using PrinterFiles = Collection<std::shared_ptr<clsPrinterFile>>;

} // namespace qncomm
