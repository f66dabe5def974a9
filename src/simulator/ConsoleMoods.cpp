#include "ConsoleMoods.h"

#include "Text.h"

#include <algorithm>

namespace qnsim {
namespace {

constexpr Micros MicrosPerMilli = 1000;
constexpr std::uint64_t NoiseWithin = 100'000; // microseconds after a reply
constexpr std::uint64_t MostNoise = 8;         // bytes

} // namespace

Micros ConsoleMoods::TimeFor(std::string_view command) const {
    const std::string squeezed = Squeezed(command);
    const auto fits = [&](const AnswerTime& answer) {
        return squeezed.starts_with(answer.command);
    };
    const auto last = std::find_if(mMoods.answers.rbegin(), mMoods.answers.rend(), fits);
    return last == mMoods.answers.rend() ? 0 : last->ms * MicrosPerMilli;
}

Micros ConsoleMoods::LateErrors() const {
    return mMoods.lateErrorsMs * MicrosPerMilli;
}

std::optional<Micros> ConsoleMoods::NoiseAfter(Micros reply) {
    if (!mNoise.Strikes()) return std::nullopt;
    return reply + static_cast<Micros>(mNoise.Below(NoiseWithin));
}

std::string ConsoleMoods::Noise() {
    std::string bytes(1 + mNoise.Below(MostNoise), '\0');
    for (char& c : bytes) {
        do
            c = static_cast<char>(mNoise.Below(256));
        while (c == '\x11' || c == '\x13'); // an Xoff that nobody sent would never be taken back
    }
    return bytes;
}

} // namespace qnsim
