// What a stored macro may hold: the names of control characters, references to variables, a command
// line and its tip, each beside a plain reading of the same rule.

#include "ReplyLines.h"
#include "common/ControlNames.h"
#include "common/InputBox.h"
#include "control/Macros.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {
namespace {

/// Every box is answered with its prompt's last letters, or cancelled.
struct EchoingInputs : InputBoxes {
    std::string ShowInputBox(const InputBox& box) override {
        ++asked;
        const std::size_t kept = box.prompt.size() % 4;
        return box.prompt.substr(box.prompt.size() - std::min(kept, box.prompt.size()));
    }
    std::size_t asked = 0;
};

void ReplaceAll(std::string& text, const std::string& mark, char character) {
    for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; ++at)
        text.replace(at, mark.size(), 1, character);
}

/// One name after the other, each in upper and then in lower case.
std::string ReplacedOneByOne(std::string text) {
    for (std::size_t code = 0; code < ControlCharacterNames.size(); ++code) {
        const std::string mark = "<" + std::string(ControlCharacterNames[code]) + ">";
        ReplaceAll(text, mark, static_cast<char>(code));
        ReplaceAll(text, LowerCase(mark), static_cast<char>(code));
    }
    return text;
}

std::size_t DelimitersIn(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find("&&", at)) != std::string_view::npos; at += 2)
        ++count;
    return count;
}

void CheckPrompts(const std::string& text) {
    EchoingInputs inputs;
    std::size_t turns = 0;
    MacroPrompts prompts(inputs, [&turns] { ++turns; });
    const std::size_t delimiters = DelimitersIn(text);
    const auto expanded = prompts.Expand(text);
    Require(expanded.has_value() == (delimiters % 2 == 0));
    Require(turns == inputs.asked && inputs.asked <= delimiters / 2);
    if (delimiters == 0) Require(*expanded == text);
    if (!expanded) Require(inputs.asked == 0);
}

void CheckCommandLine(const std::string& text) {
    const LaunchRequest request = ParseCommandLine(text);
    Require(request.program.starts_with(request.folder));
    Require(request.folder.empty()
            || request.folder.find_last_of("/\\") + 1 == request.folder.size());
    for (const std::string& argument : request.arguments)
        Require(argument.find('"') == std::string::npos);
}

void CheckTip(const std::string& text) {
    const MacroRecord record = ParseMacro(text);
    const std::string tip = MacroTip(record);
    const bool known = record.kind == "0" || record.kind == "1" || record.kind == "2";
    Require(tip.empty() != known);
    if (!known) return;
    Require(tip.ends_with('"') && tip.find(":\"") != std::string::npos);
    if (record.argument.size() <= 40) Require(tip.find(record.argument) != std::string::npos);
}

} // namespace
} // namespace qncomm

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string text(data, data + size);
    qncomm::Require(qncomm::ReplaceControlNames(text) == qncomm::ReplacedOneByOne(text));
    qncomm::CheckPrompts(text);
    qncomm::CheckCommandLine(text);
    qncomm::CheckTip(text);
    return 0;
}
