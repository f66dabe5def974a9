#pragma once

#include <string_view>

namespace qncomm {

class clsDataLink;

/// Sends bytes of any length over the open port in pieces that each drain within the link's limit
/// of 10000 ms, even at the slowest baud rate. Of an empty text it sends nothing, but it raises for
/// a closed port. Raises what clsDataLink::OutputText raises.
void SendInPieces(clsDataLink& link, std::string_view bytes);

} // namespace qncomm
