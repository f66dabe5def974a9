#pragma once

#include "usage/Usage.h"

#include <string>
#include <string_view>

namespace qncomm {

/// The program's page for man(1): UTF-8, with every command and option.
std::string ManualPage(const Usage& program, std::string_view version);

} // namespace qncomm
