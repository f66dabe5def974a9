#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// The kernel's last messages that name the device, such as "ttyUSB0", or a program that took the
/// adapter behind it, oldest first; nothing when this user may not read them.
std::optional<std::vector<std::string>> ReadKernelMessages(const std::string& sFile,
                                                           std::string_view sDevice);

} // namespace qncomm
