#pragma once

#include <string_view>

namespace qncomm {

class clsDataLink;

/// Sends bytes of any length over the open port in pieces, each of which has left before the next
/// one begins: a slow line takes its time, a blocked one ends in 1007 once nothing has moved for
/// 5000 ms. The last piece drains within 10000 ms. Of an empty text it sends nothing, but it raises
/// for a closed port. Raises what clsDataLink::OutputText raises.
void SendInPieces(clsDataLink& link, std::string_view bytes);

} // namespace qncomm
