#include "link/SendInPieces.h"

#include "LinkState.h"

#include <cstddef>
#include <string>

namespace qncomm {
namespace {

constexpr std::size_t PieceSize = 1024;

} // namespace

void SendInPieces(clsDataLink& link, std::string_view bytes) {
    for (; bytes.size() > PieceSize; bytes.remove_prefix(PieceSize))
        link.State().OutputPart(bytes.substr(0, PieceSize));
    link.OutputText(std::string(bytes));
}

} // namespace qncomm
