#pragma once

#include "transfer/TransferFiles.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm::fuzz {

// Makes a well-formed piece of the protocol out of the fuzzer's bytes, with right sums, so that
// what stands behind the sums is reached too.
using WellFormed = std::string (*)(std::string_view choices);
std::string WellFormedZModem(std::string_view choices);
std::string WellFormedKermit(std::string_view choices);

// Drives one engine with what the fuzzer chose: bytes from the line in pieces, time that passes,
// answers of the files that fail or refuse, a line that takes little, a cancel. Ends the program
// when a promise of the engine is broken.
void DriveEngine(transfer::TransferEngine& engine, WellFormed wellFormed, const std::uint8_t* data,
                 std::size_t size);

} // namespace qncomm::fuzz
