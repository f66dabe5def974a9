#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qncomm::testing {

/// A command of a document and what the document shows below it.
struct ShownCommand {
    std::string command;
    std::vector<std::string> output;
    int line = 0; ///< where it stands in the document, from 1
};

/// The commands in the blocks that are marked as console sessions (```console), in their order. A
/// command is a line that begins with "$ "; what follows it up to the next one is its output.
std::vector<ShownCommand> CommandsOf(std::string_view sDocument);

/// Whether a real output is the shown one: line for line, where a shown line that is just "…"
/// stands for any number of lines.
bool Matches(const std::vector<std::string>& shown, const std::vector<std::string>& real);

/// A text's lines without their ends.
std::vector<std::string> LinesOf(std::string_view sText);

} // namespace qncomm::testing
