#include "endpoints/Sleeper.h"

#include <cstdint>
#include <limits>

namespace qnsim {
namespace {

constexpr std::int32_t NoLimitMs = std::numeric_limits<std::int32_t>::max();

} // namespace

Sleeper::Sleeper(qncomm::Reactor& loop) : mLoop(loop), mAlarm(loop.CreateAlarm([] {})) {}

void Sleeper::SleepUntil(std::optional<Micros> due) {
    if (due) {
        mAlarm->SetDue(*due);
    } else {
        mAlarm->Clear();
    }
    mLoop.Yield(NoLimitMs);
}

} // namespace qnsim
