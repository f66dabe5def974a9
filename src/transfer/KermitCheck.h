#pragma once

#include <string>
#include <string_view>

namespace qncomm::transfer {

/// The block check of `bytes` as it travels: `kind` characters, 1, 2 or 3.
std::string KermitCheck(unsigned kind, std::string_view bytes);

/// The packet from its mark to its end of line.
std::string WriteKermitPacket(char type, unsigned sequence, std::string_view data, unsigned check);

} // namespace qncomm::transfer
