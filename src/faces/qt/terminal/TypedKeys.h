#pragma once

#include "terminal/view/KeyPress.h"

class QKeyEvent;

namespace qncomm {

/// A key event of the toolkit as the terminal's rules take it.
KeyPress KeyPressOf(const QKeyEvent& event);

} // namespace qncomm
