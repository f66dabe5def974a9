#include "control/Macros.h"

#include "common/ControlNames.h"
#include "common/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace qncomm {
namespace {

constexpr std::size_t TipLength = 40;
constexpr std::string_view PromptDelimiter = "&&";
constexpr std::size_t LongestName = 3;

struct MacroKind {
    FunctionKeyKind kind;
    std::string_view label;
    bool isHostText; ///< the argument is UTF-8
};
constexpr std::array MacroKinds = {MacroKind{TextMacro, "Text:", false},
                                   MacroKind{FileMacro, "File:", true},
                                   MacroKind{RunMacro, "Run:", true}};

bool ContinuesCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

/// The position at which the first count characters of the text end.
std::size_t CharacterEnd(const std::string& text, std::size_t count, bool utf8) {
    if (!utf8) return std::min(count, text.size());
    std::size_t end = 0;
    while (end < text.size() && count-- > 0)
        for (++end; end < text.size() && ContinuesCharacter(text[end]);)
            ++end;
    return end;
}

/// The code of a control character's name, all in upper or all in lower case.
std::optional<char> CodeOf(std::string_view name) {
    const std::string upper = UpperCase(name);
    if (name != upper && name != LowerCase(name)) return std::nullopt;
    const auto found = std::ranges::find(ControlCharacterNames, upper);
    if (found == ControlCharacterNames.end()) return std::nullopt;
    return static_cast<char>(found - ControlCharacterNames.begin());
}

/// Arguments as a program gets them: separated by blanks, except within double quotes.
std::vector<std::string> SplitArguments(std::string_view text) {
    std::vector<std::string> arguments;
    bool quoted = false;
    bool inside = false;
    for (const char c : text) {
        if (c == '"') quoted = !quoted;
        const bool parts = c == ' ' && !quoted;
        if (!parts && !inside) arguments.emplace_back();
        inside = !parts;
        if (!parts && c != '"') arguments.back() += c;
    }
    return arguments;
}

} // namespace

std::string MacroTip(const MacroRecord& record) {
    const auto kind = std::ranges::find(MacroKinds, record.Kind(), &MacroKind::kind);
    if (kind == MacroKinds.end()) return {};
    const std::size_t end = CharacterEnd(record.argument, TipLength, kind->isHostText);
    return std::string(kind->label) + "\"" + record.argument.substr(0, end)
           + (end < record.argument.size() ? "...\"" : "\"");
}

std::string ReplaceControlNames(std::string_view sText) {
    std::string result;
    result.reserve(sText.size());
    for (std::size_t at = 0; at < sText.size(); ++at) {
        if (sText[at] == '<') {
            const std::string_view rest = sText.substr(at + 1, LongestName + 1);
            const std::size_t length = rest.find('>');
            const auto code =
                length != std::string_view::npos ? CodeOf(rest.substr(0, length)) : std::nullopt;
            if (code) {
                result += *code;
                at += length + 1;
                continue;
            }
        }
        result += sText[at];
    }
    return result;
}

LaunchRequest ParseCommandLine(std::string_view sCommandLine) {
    const std::string line = Trim(sCommandLine);
    LaunchRequest request;
    std::string arguments;
    if (line.starts_with('"')) {
        const std::size_t close = line.find('"', 1);
        request.program = line.substr(1, close == std::string::npos ? close : close - 1);
        if (close != std::string::npos) arguments = Trim(line.substr(close + 1));
    } else {
        const std::size_t blank = line.find(' ');
        request.program = line.substr(0, blank);
        if (blank != std::string::npos) arguments = line.substr(blank + 1);
    }
    request.arguments = SplitArguments(arguments);
    request.folder = request.program.substr(0, request.program.find_last_of("/\\") + 1);
    return request;
}

std::optional<std::string> MacroPrompts::Expand(std::string_view sText) {
    if (sText.find(PromptDelimiter) == std::string_view::npos) return std::string(sText);
    const std::vector<std::string> pieces = SplitKeepEmpty(sText, PromptDelimiter);
    if (pieces.size() % 2 == 0) return std::nullopt;
    std::string expanded;
    for (std::size_t i = 0; i < pieces.size(); ++i)
        expanded += i % 2 == 0 ? pieces[i] : Resolve(pieces[i]);
    return expanded;
}

std::string MacroPrompts::Resolve(std::string_view reference) {
    if (!reference.starts_with('?')) return mRemembered[UpperCase(reference)];
    reference.remove_prefix(1);
    const std::size_t open = reference.find('"');
    if (open == std::string_view::npos) {
        const std::string name(reference);
        return Ask(name, "Input new value for '" + name + "'.");
    }
    const std::string_view prompt = reference.substr(open + 1);
    return Ask(std::string(reference.substr(0, open)),
               std::string(prompt.substr(0, prompt.find('"'))));
}

std::string MacroPrompts::Ask(const std::string& name, const std::string& prompt) {
    const std::string key = UpperCase(name);
    const std::string answer = mInputs.ShowInputBox(
        {.prompt = prompt, .title = "Input new value...", .answer = mRemembered[key]});
    mGiveTurn();
    if (!answer.empty()) mRemembered[key] = answer;
    return mRemembered[key];
}

} // namespace qncomm
