#pragma once

#include "common/Text.h"
#include "printer/clsQuorin.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// One command line and its reply, as the operations state it: a row of a table.
struct clsQuorin::Exchange {
    std::string line;
    std::int32_t timeout = 1000;      ///< ms for the reply
    bool listing = false;             ///< only a line that is "Ok" alone ends the reply
    bool systemLevel = false;         ///< ends the line in ",A" on the models that know it
    std::vector<std::string> dirty{}; ///< paths whose devices change with it
};

/// A file of this machine on its way into the printer, and how it is undone.
struct clsQuorin::FileLoad {
    std::string_view command; ///< its name and length follow
    const std::string& path;
    std::string_view options{}; ///< behind the length
    std::string_view removal;   ///< deletes what came of it; its name follows
    std::int32_t timeout;       ///< ms for the reply
};

/// What the log says when an operation returns quietly.
inline constexpr std::string_view PortRefused = "port not available";

/// What StatusEvent carries when there is no percentage to tell.
inline constexpr std::int16_t NoProgress = -1;

/// A line of a reply; empty beyond its end.
inline std::string LineAt(const std::vector<std::string>& reply, std::size_t index) {
    return index < reply.size() ? reply[index] : std::string();
}

} // namespace qncomm
