#include "link/LiveState.h"

#include <array>
#include <cstddef>

namespace qncomm {
namespace {

constexpr std::array<std::string_view, 5> LineWords{"unknown", "closed", "open", "lost", "busy"};
constexpr std::array<std::string_view, 7> PrinterWords{
    "unknown", "silent", "at prompt", "running", "asking", "receiving", "rebooting"};
constexpr std::array<std::string_view, 8> SourceWords{"nothing", "reply",    "text",   "silence",
                                                      "command", "transfer", "search", "port"};

template <std::size_t N>
std::string_view WordAt(const std::array<std::string_view, N>& words, std::int16_t number) {
    const auto index = static_cast<std::size_t>(number);
    return index < N ? words[index] : words.front();
}

} // namespace

std::string_view WordFor(enumLineState state) {
    return WordAt(LineWords, state);
}

std::string_view WordFor(enumPrinterActivity activity) {
    return WordAt(PrinterWords, activity);
}

std::string_view WordFor(enumLearntFrom from) {
    return WordAt(SourceWords, from);
}

} // namespace qncomm
