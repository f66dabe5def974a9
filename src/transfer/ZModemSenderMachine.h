#pragma once

#include "Crc.h"
#include "FlowWindow.h"
#include "PieceLength.h"
#include "ZModemReader.h"
#include "ZModemWriter.h"
#include "transfer/ZModemSender.h"

#include <algorithm>
#include <utility>

namespace qncomm::transfer {

enum class ZModemSender::State {
    Hello,     ///< asking for a receiver
    Attention, ///< told the attention sequence, not yet acknowledged
    NextFile,  ///< waiting for the caller
    FileSent,  ///< offered a file
    Checksum,  ///< summing up the file, which the receiver asked for
    Data,
    Eof,
    Finish,
};

/// What a sender remembers.
struct ZModemSender::Machine {
    static constexpr std::size_t ReadAhead = 65536;

    explicit Machine(ZModemSenderOptions given)
        : options(std::move(given)),
          piece({std::min<std::size_t>(256, Longest()), 32, Longest(), 10, 1, 3}) {}
    [[nodiscard]] std::size_t Longest() const {
        return std::clamp<std::size_t>(options.subpacket, 32, 8192);
    }

    ZModemSenderOptions options;
    ZModemReader reader;
    ZModemWriter writer;
    FlowWindow flow{0.03, FlowWindow::Damage::LosesAll};
    PieceLength piece;
    State state = State::Hello;
    int finishTries = 0;
    Time askedAt{
        0}; ///< when a file was offered; -1 when more than once, so that no round trip can be told

    std::uint64_t position = 0; ///< of the next byte to send
    std::uint64_t furthest = 0; ///< that was ever sent
    std::uint64_t marked = 0;   ///< last position that an acknowledgement was asked for
    bool endSaid = false;       ///< of this file
    bool frameOpen = false;
    bool frameAwaited = false; ///< the frame ended with a wait for its acknowledgement
    bool probing = false;      ///< one piece at a time, until the receiver is heard again
    std::size_t segment = 0;   ///< bytes that the receiver takes at once, 0: any number
    std::uint64_t frameStart = 0;
    Time restartedAt{0};
    std::uint64_t restartedTo = 0;
    int restarts = 0; ///< since the last progress

    std::string ahead; ///< of the file, from aheadAt
    std::uint64_t aheadAt = 0;
    bool atEnd = false; ///< the byte at `position` is behind the end

    std::uint64_t checksumAt = 0;
    std::uint64_t checksumEnd = 0;
    std::uint32_t checksum = 0;
    int sums = 0; ///< of this file that were asked for
};

} // namespace qncomm::transfer
