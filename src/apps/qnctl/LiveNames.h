#pragma once

#include "usage/Completion.h"

#include <string>
#include <vector>

namespace qnctl {

/// What a shell can offer for a value of that name: addresses from the settings that these words
/// name and from this machine, members of the control, keys of its toolbar with their macros. Opens
/// no port.
std::vector<qncomm::Offer> LiveNames(const std::string& sValue,
                                     const std::vector<std::string>& words);

} // namespace qnctl
