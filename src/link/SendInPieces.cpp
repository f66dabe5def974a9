#include "link/SendInPieces.h"

#include "link/clsDataLink.h"

#include <cstddef>
#include <string>

namespace qncomm {
namespace {

constexpr std::size_t PieceSize = 1024;

} // namespace

void SendInPieces(clsDataLink& link, std::string_view bytes) {
    do {
        const std::string_view piece = bytes.substr(0, PieceSize);
        link.OutputText(std::string(piece));
        bytes.remove_prefix(piece.size());
    } while (!bytes.empty());
}

} // namespace qncomm
