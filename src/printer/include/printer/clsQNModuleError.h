#pragma once

#include "common/Collection.h"

#include <cstdint>
#include <memory>
#include <string>

namespace qncomm {

/// An error that the printer reported for a line of an uploaded module.
struct clsQNModuleError {
    std::string QNModuleName;     ///< the source path that was given for the upload
    std::int32_t QNErrCode = 0;   ///< the printer's error number
    std::int32_t QNErrInLine = 0; ///< position of the line in the module, from 1
    std::string QNErrDesc;        ///< the printer's description
    std::string QNText;           ///< that line's own text; empty beyond the module's end
};

/// Errors in the order in which the printer reported them, keyed by module name, ":" and line.
using ModuleErrors = Collection<std::shared_ptr<clsQNModuleError>>;

} // namespace qncomm
