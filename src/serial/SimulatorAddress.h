#pragma once

#include <string>
#include <string_view>

namespace qncomm {

/// What is wrong with the text behind "sim:"; empty when it names a virtual printer.
std::string SimulatorAddressError(std::string_view sText);

} // namespace qncomm
