// What stands in the printer's input line and was not ended: by a session that broke, or by bytes
// that were no line.

#include "LinkState.h"

#include <utility>

namespace qncomm {
namespace {

/// Closes what was not opened: an error wherever it stands, so that no printer carries out a line
/// that ends in it.
constexpr std::string_view Nonsense = ")(\r\n";

} // namespace

void LinkState::SpoilInputLine() {
    if (std::exchange(inputLine, InputLine::Empty) == InputLine::Empty) return;
    link.OutputText(std::string(Nonsense));
    echo.Clear();
}

} // namespace qncomm
