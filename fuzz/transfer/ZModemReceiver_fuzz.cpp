#include "EngineFuzz.h"
#include "transfer/ZModemReceiver.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    qncomm::transfer::ZModemReceiver engine;
    qncomm::fuzz::DriveEngine(engine, qncomm::fuzz::WellFormedZModem, data, size);
    return 0;
}
