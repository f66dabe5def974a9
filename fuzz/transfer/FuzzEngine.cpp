// One target for each engine of the transfers: the build names it in QN_ENGINE.
#include "EngineFuzz.h"
#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"
#include "transfer/ZModemReceiver.h"
#include "transfer/ZModemSender.h"

#include <type_traits>

namespace qncomm::fuzz {
namespace {

template <class Engine>
void Drive(const std::uint8_t* data, std::size_t size) {
    using transfer::KermitOptions;
    if constexpr (std::is_constructible_v<Engine, KermitOptions>) {
        KermitOptions options;
        options.reliable = size % 2 == 1; // streams when the fuzzer's bytes agree to it
        Engine engine(options);
        DriveEngine(engine, WellFormedKermit, data, size);
    } else {
        Engine engine;
        DriveEngine(engine, WellFormedZModem, data, size);
    }
}

} // namespace
} // namespace qncomm::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    qncomm::fuzz::Drive<qncomm::transfer::QN_ENGINE>(data, size);
    return 0;
}
