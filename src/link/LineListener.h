#pragma once

#include "link/Listening.h"

#include <cstdint>

namespace qncomm {

struct LinkState;

/// Listens to the open port, which nothing else may read meanwhile, and sends nothing: until
/// nothing has come for quietMs, or for mostMs where it never falls silent.
HeardLine ListenToLine(LinkState& state, std::int32_t quietMs, std::int32_t mostMs);

/// Drops what comes for so long, however much it is.
void DropTalk(LinkState& state, std::int32_t ms);

} // namespace qncomm
