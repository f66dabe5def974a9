#pragma once

#include "common/Text.h"

#include <cstddef>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// Ends the run with the input kept when a property does not hold.
inline void Require(bool bHolds) {
    if (!bHolds) std::abort();
}

/// What the link makes of received bytes: the lines that the parsers get.
inline std::vector<std::string> ReplyLines(const unsigned char* data, std::size_t size) {
    const std::string bytes(data, data + size);
    return SplitNonEmpty(NormalizeLineEnds(bytes), CrLf);
}

} // namespace qncomm
