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

/// The call that a line's words make.
std::optional<MemberCall> CallOf(std::vector<std::string> words, Outcome& outcome) {
    const std::string member = words.front();
    words.erase(words.begin());
    return UnderstandCall(member, words, outcome);
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

std::optional<BatchLine> BatchReader::Next(Outcome& outcome) {
    while (const auto text = mInput.ReadLine()) {
        if (++mNumber > MostBatchLines && mKept) {
            outcome =
                At(Refused(ExitStatus::Usage,
                           "a batch has at most " + std::to_string(MostBatchLines) + " lines."),
                   Place());
            return std::nullopt;
        }
        const auto words = WordsOf(*text);
        if (words && words->empty()) continue;
        Outcome wrong = Refused(ExitStatus::Usage, "a quote does not end.");
        if (words)
            if (const auto call = CallOf(*words, wrong)) return BatchLine{Place(), *call};
        outcome = At(wrong, Place());
        return std::nullopt;
    }
    return std::nullopt;
}

std::vector<BatchLine> ReadBatch(BatchReader& reader, Outcome& outcome) {
    std::vector<BatchLine> lines;
    while (const auto line = reader.Next(outcome))
        lines.push_back(*line);
    return lines;
}

} // namespace qnctl
