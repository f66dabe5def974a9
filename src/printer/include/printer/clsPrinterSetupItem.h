#pragma once

#include "common/Collection.h"

#include <memory>
#include <string>

namespace qncomm {

/// One item of the printer's setup.
struct clsPrinterSetupItem {
    std::string Key;   ///< the path of section names, joined by commas: "SER-COM,UART1,BAUDRATE"
    std::string Value; ///< may be empty
};

/// Items in the order of the printer's listing, keyed by Key.
using PrinterSetup = Collection<std::shared_ptr<clsPrinterSetupItem>>;

} // namespace qncomm
