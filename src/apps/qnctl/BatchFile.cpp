#include "BatchFile.h"

namespace qnctl {
namespace {

constexpr std::string_view Blanks = " \t\r";
/// A batch is read whole before its first call: a stream without an end would never get there.
constexpr int MostBatchLines = 100'000;

/// One word at the start of a text, which it is cut off from; nothing for a quote that does not
/// end.
std::optional<std::string> TakeWord(std::string_view& text) {
    std::string word;
    bool quoted = false;
    while (!text.empty()) {
        const char c = text.front();
        if (!quoted && Blanks.find(c) != std::string_view::npos) break;
        text.remove_prefix(1);
        if (c != '"') {
            word += c;
        } else if (quoted && text.starts_with('"')) {
            word += c;
            text.remove_prefix(1);
        } else {
            quoted = !quoted;
        }
    }
    return quoted ? std::nullopt : std::optional(word);
}

Outcome At(Outcome outcome, const std::string& place) {
    outcome.place = place;
    return outcome;
}

bool AddLine(std::vector<BatchLine>& lines, const std::string& text, const std::string& place,
             Outcome& outcome) {
    auto words = WordsOf(text);
    if (!words) {
        outcome = At(Refused(ExitStatus::Usage, "a quote does not end."), place);
        return false;
    }
    if (words->empty()) return true;
    const std::string member = words->front();
    words->erase(words->begin());
    Outcome wrong;
    const auto call = UnderstandCall(member, *words, wrong);
    if (call) lines.push_back({place, *call});
    if (!call) outcome = At(wrong, place);
    return call.has_value();
}

} // namespace

std::optional<std::vector<std::string>> WordsOf(std::string_view line) {
    std::vector<std::string> words;
    for (;;) {
        const std::size_t start = line.find_first_not_of(Blanks);
        if (start == std::string_view::npos || line[start] == '#') return words;
        line.remove_prefix(start);
        const auto word = TakeWord(line);
        if (!word) return std::nullopt;
        words.push_back(*word);
    }
}

std::vector<BatchLine> ReadBatch(const std::string& name, qncomm::LineReader& input,
                                 Outcome& outcome) {
    std::vector<BatchLine> lines;
    int number = 1;
    for (auto text = input.ReadLine(); text; text = input.ReadLine(), ++number) {
        const std::string place = name + ":" + std::to_string(number);
        if (number > MostBatchLines) {
            outcome =
                At(Refused(ExitStatus::Usage,
                           "a batch has at most " + std::to_string(MostBatchLines) + " lines."),
                   place);
            break;
        }
        if (!AddLine(lines, *text, place, outcome)) break;
    }
    return lines;
}

} // namespace qnctl
