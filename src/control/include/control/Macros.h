#pragma once

#include "common/InputBox.h"
#include "common/Launcher.h"
#include "common/MacroRecord.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// The tool tip of a key: the kind's label and up to 40 characters of the argument in quotes; empty
/// for a key without a macro.
std::string MacroTip(const MacroRecord& record);

/// The text with every "<CR>" and the like, all in upper or all in lower case, replaced by its
/// character. Linear in the text's length.
std::string ReplaceControlNames(std::string_view sText);

/// The program, arguments and folder of a command line: the program ends at its closing quote, or
/// at the first blank. The arguments are split at blanks outside of quotes.
LaunchRequest ParseCommandLine(std::string_view sCommandLine);

/// The variables of text macros: what was answered last is offered again and stands for a plain
/// reference. Names are told apart without regard to case.
class MacroPrompts {
  public:
    /// Asks through inputs, which must outlive it; giveTurn runs after each box, so that the loop
    /// can dispatch what is due.
    MacroPrompts(InputBoxes& inputs, std::function<void()> giveTurn)
        : mInputs(inputs), mGiveTurn(std::move(giveTurn)) {}

    /// The text with the references between pairs of "&&" replaced: "&&NAME&&" by what is
    /// remembered, "&&?NAME&&" and "&&?NAME"prompt"&&" by what the user answers. Nothing for an
    /// odd number of "&&"; then nothing was asked.
    std::optional<std::string> Expand(std::string_view sText);

  private:
    std::string Resolve(std::string_view reference);
    std::string Ask(const std::string& name, const std::string& prompt);

    InputBoxes& mInputs;
    std::function<void()> mGiveTurn;
    std::map<std::string, std::string> mRemembered; ///< by upper-case name
};

} // namespace qncomm
