#pragma once

#include "ControlSequence.h"
#include "terminal/Style.h"

namespace qncomm::terminal {

/// The style after "select graphic rendition" with the sequence's values. A value or a colour that
/// is not known changes nothing.
Style WithGraphics(Style style, const ControlSequence& sequence);

} // namespace qncomm::terminal
