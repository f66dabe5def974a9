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

/// What a printer says at first of a line that an earlier probe, at a wrong rate, has spoiled.
constexpr std::string_view Refusal = "Error";

std::string Visible(std::string_view text) {
    std::string visible(text);
    std::erase_if(visible, [](char c) { return !IsVisible(c); });
    return visible;
}

std::int32_t TravelMs(std::size_t bytes, double rate) {
    constexpr double bitsPerByte = 11;
    return static_cast<std::int32_t>(1000 * bitsPerByte * static_cast<double>(bytes)
                                     / std::max(rate, 300.0));
}

bool HasThen(std::string_view text, std::string_view first, std::string_view then) {
    const std::size_t at = text.find(first);
    return at != std::string_view::npos
           && text.find(then, at + first.size()) != std::string_view::npos;
}

} // namespace

SearchAnswer::SearchAnswer(std::string_view probe, std::string_view word, double rate,
                           std::size_t before)
    : mEcho(Visible(probe)),
      mWord(word),
      mNoAnswerMs(NoAnswerMs + TravelMs(before, rate)),
      mLineMs(TravelMs(2 * probe.size(), rate)),
      mLimitMs(LongestAnswerMs) {}

void SearchAnswer::Take(std::string_view text) {
    mComplete = HasThen(text, mWord, EndOfAnswer);
    const std::string came = Visible(text);
    mEchoed = came.find(mEcho) != std::string::npos;
    const std::string answer = mWord + "Ok";
    const bool fits = (mEcho + answer).starts_with(came) || answer.starts_with(came);
    const bool begun = came.find(mEcho.substr(0, BegunEcho)) != std::string::npos;
    const bool refuses =
        (!came.empty() && Refusal.starts_with(came)) || came.find(Refusal) != std::string::npos;
    // One that refuses is a printer, and comes to the probe when it is through with the rest.
    if (refuses || (fits && (!came.empty() || text.size() <= MostLineEnds)))
        mLimitMs = LongestAnswerMs;
    else
        mLimitMs = mNoAnswerMs + (begun ? mLineMs : 0);
}

} // namespace qncomm
