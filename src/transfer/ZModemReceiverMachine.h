#pragma once

#include "RoundTrip.h"
#include "ZModemReader.h"
#include "ZModemWriter.h"
#include "transfer/ZModemReceiver.h"

#include <utility>

namespace qncomm::transfer {

enum class ZModemReceiver::State {
    Ready,      ///< said so; a file or the end is awaited
    Offered,    ///< waiting for the caller to decide about a file
    Compare,    ///< asked the sender for the sum of what is already here
    Reposition, ///< told the sender where to start; its frame is awaited
    Data,
    Closing,  ///< waiting for the caller to close the file
    Finished, ///< answered the farewell
};

/// What a receiver remembers.
struct ZModemReceiver::Machine {
    explicit Machine(ZModemReceiverOptions given) : options(given) {}

    ZModemReceiverOptions options;
    ZModemReader reader;
    ZModemWriter writer;
    RoundTrip roundTrip;
    State state = State::Ready;
    std::uint8_t contentOf = 0;      ///< the header that announced the content being read
    int tries = 0;                   ///< of what was said last
    std::uint64_t filePosition = 0;  ///< bytes that the file has
    std::uint32_t sum = 0;           ///< of the bytes that were here before the file was offered
    std::uint64_t framePosition = 0; ///< of the next subpacket in the file
    char subpacketEnd = 0;           ///< of the one being written
    Time askedAt{0};                 ///< when a position was asked for; -1 when more than once
    bool closesWhole = false;
    Time lastByte{0};
    std::string attention;
};

} // namespace qncomm::transfer
