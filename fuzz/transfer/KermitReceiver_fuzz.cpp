#include "EngineFuzz.h"
#include "transfer/KermitReceiver.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    qncomm::transfer::KermitOptions options;
    options.reliable = size % 2 == 1; // streams when the fuzzer's bytes agree to it
    qncomm::transfer::KermitReceiver engine(options);
    qncomm::fuzz::DriveEngine(engine, qncomm::fuzz::WellFormedKermit, data, size);
    return 0;
}
