#pragma once

#include <string>

namespace qncomm {

/// A question that is answered by a line of text. Prompt, default and answer are 8-bit text of the
/// line: what is typed goes to the printer as it is.
struct InputBox {
    std::string prompt; ///< the question
    std::string title;  ///< of the box's window; empty: the system's name
    std::string answer; ///< the text that is offered, which the user may change
};

/// Asks the user for a text. A face or a host implements it.
class InputBoxes {
  public:
    virtual ~InputBoxes() = default;

    /// Shows the box, waits and returns the answer, empty when the user cancelled. Where
    /// no one can answer (a program without a terminal) it returns an empty text at once.
    virtual std::string ShowInputBox(const InputBox& box) = 0;
};

} // namespace qncomm
