#pragma once

#include "trace/TraceSink.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm {

/// A record as a line of a trace, without its end. redacted: how many bytes were taken out; sBytes
/// is empty then.
///
/// Written by hand: a trace is written while the printer waits, and the library that reads it takes
/// seven times as long for a command and eight times for binary data.
std::string WriteTraceLine(std::int64_t lMs, TraceKind kind, std::string_view sBytes,
                           std::size_t redacted = 0);

} // namespace qncomm
