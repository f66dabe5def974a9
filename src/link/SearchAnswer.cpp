#include "SearchAnswer.h"

#include <algorithm>

namespace qncomm {
namespace {

constexpr std::string_view EndOfAnswer = "Ok\r\n";
/// The silence after which a probe has failed.
constexpr std::int32_t NoAnswerMs = 50;
/// The longest answer, however slowly it comes.
constexpr std::int32_t LongestAnswerMs = 3000;
/// As much of an echo as nobody else says.
constexpr std::size_t BegunEcho = 8;
/// Line ends alone may begin an answer; a program that prints empty lines says more of them.
constexpr std::size_t MostLineEnds = 16;

bool IsVisible(char c) {
    return c >= ' ' && c <= '~';
}

std::string Visible(std::string_view text) {
    std::string visible(text);
    std::erase_if(visible, [](char c) { return !IsVisible(c); });
    return visible;
}

bool HasThen(std::string_view text, std::string_view first, std::string_view then) {
    const std::size_t at = text.find(first);
    return at != std::string_view::npos
           && text.find(then, at + first.size()) != std::string_view::npos;
}

} // namespace

SearchAnswer::SearchAnswer(std::string_view probe, std::string_view word, double rate)
    : mEcho(Visible(probe)), mWord(word), mLimitMs(LongestAnswerMs) {
    constexpr double bitsPerByte = 11;
    const auto bytes = static_cast<double>(2 * probe.size());
    mLineMs = static_cast<std::int32_t>(1000 * bitsPerByte * bytes / std::max(rate, 300.0));
}

void SearchAnswer::Take(std::string_view text) {
    mComplete = HasThen(text, mWord, EndOfAnswer);
    const std::string came = Visible(text);
    const std::string answer = mWord + "Ok";
    const bool fits = (mEcho + answer).starts_with(came) || answer.starts_with(came);
    const bool begun = came.find(mEcho.substr(0, BegunEcho)) != std::string::npos;
    if (fits && (!came.empty() || text.size() <= MostLineEnds))
        mLimitMs = LongestAnswerMs;
    else
        mLimitMs = begun ? NoAnswerMs + mLineMs : NoAnswerMs;
}

} // namespace qncomm
