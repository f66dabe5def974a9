#include "EngineFuzz.h"
#include "transfer/ZModemSender.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    qncomm::transfer::ZModemSender engine;
    qncomm::fuzz::DriveEngine(engine, qncomm::fuzz::WellFormedZModem, data, size);
    return 0;
}
