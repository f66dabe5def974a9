#pragma once

#include <string>

namespace qncomm {

/// A question that is answered by a line of text. Prompt, default and answer are 8-bit text of the
/// line: what is typed goes to the printer as it is.
struct InputBox {
    std::string prompt;
    std::string title;
    std::string answer; ///< what is offered
};

/// Asks the person for a text. A face or a host implements it.
class InputBoxes {
  public:
    virtual ~InputBoxes() = default;

    /// Shows the box, waits and returns the answer, empty when the person cancelled. Never blocks a
    /// run that has nobody to answer: such a host returns an empty text.
    virtual std::string ShowInputBox(const InputBox& box) = 0;
};

} // namespace qncomm
