#include "printer/SetupListing.h"

#include "common/RuntimeErrors.h"
#include "common/Text.h"

namespace qncomm {

clsPrinterSetupItem ParseSetupLine(std::string_view sLine) {
    if (sLine.starts_with('#')) sLine.remove_prefix(1);
    const std::size_t comma = sLine.rfind(',');
    if (comma == std::string_view::npos) RaiseRuntimeError(RtInvalidCall);
    return {Trim(sLine.substr(0, comma)), Trim(sLine.substr(comma + 1))};
}

} // namespace qncomm
