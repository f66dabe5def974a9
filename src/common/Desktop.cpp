#include "common/Desktop.h"

namespace qncomm {

const std::string_view ProductName = "QNComm";

} // namespace qncomm
