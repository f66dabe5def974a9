#pragma once

#include <string>

class QKeyEvent;

namespace qncomm {

/// What a key sends to the line: its characters as bytes, CR for Enter, 08 for Backspace, the
/// control character for a letter with Ctrl. Empty for a key that sends nothing, such as a letter
/// with Ctrl and Shift, which is a shortcut of the program around.
std::string BytesOf(const QKeyEvent& event);

} // namespace qncomm
