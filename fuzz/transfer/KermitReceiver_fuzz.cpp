#include "EngineFuzz.h"
#include "transfer/KermitReceiver.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    qncomm::transfer::KermitReceiver engine;
    qncomm::fuzz::DriveEngine(engine, qncomm::fuzz::WellFormedKermit, data, size);
    return 0;
}
