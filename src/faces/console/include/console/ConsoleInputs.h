#pragma once

#include "common/InputBox.h"
#include "console/ConsoleAsker.h"

#include <string>

namespace qncomm {

/// Input boxes at a console: the prompt with what is offered, answered by a line, which goes to the
/// printer in its character set. An empty line, or no input to ask at, is an empty answer.
class ConsoleInputs final : public InputBoxes {
  public:
    /// The asker must outlive the object.
    explicit ConsoleInputs(ConsoleAsker& asker) : mAsker(asker) {}

    std::string ShowInputBox(const InputBox& box) override;

  private:
    ConsoleAsker& mAsker;
};

} // namespace qncomm
