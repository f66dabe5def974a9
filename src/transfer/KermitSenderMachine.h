#pragma once

#include "FlowWindow.h"
#include "KermitCoding.h"
#include "KermitReader.h"
#include "PieceLength.h"
#include "transfer/KermitSender.h"

#include <deque>

namespace qncomm::transfer {

enum class KermitSender::State {
    Init,       ///< offered terms
    NextFile,   ///< waiting for the caller
    Header,     ///< told the name
    Attributes, ///< told size, time and mode
    Data,
    Eof,
    Break, ///< said that the batch is over
};

/// A packet that is under way.
struct KermitSender::Slot {
    char type = 0;
    unsigned sequence = 0;
    std::string packet;
    std::size_t content = 0; ///< file bytes in it
    bool acknowledged = false;
    int tries = 0;              ///< beyond the first
    Time sentAt{0};             ///< last
    std::uint64_t position = 0; ///< in the stream of all bytes sent, behind its last try
    std::string reply;          ///< what came with the acknowledgement
};

/// What a sender remembers.
struct KermitSender::Machine {
    static constexpr std::size_t ReadAhead = 65536;

    explicit Machine(const KermitOptions& given) : options(given) {}

    KermitOptions options;
    KermitReader reader;
    KermitTerms terms;
    KermitCoding coding{terms, KermitPrefixing::All};
    FlowWindow flow{0.2, FlowWindow::Damage::LosesPiece};
    PieceLength piece{{80, 20, 80, 10, 8, 1.2}};
    State state = State::Init;
    std::deque<Slot> slots;
    unsigned sequence = 0;       ///< of the next new packet
    std::uint64_t sentBytes = 0; ///< of packets, every try counted
    int timeouts = 0;            ///< in a row
    std::string ended; ///< why a receiver ended the session that is now tried again; else empty

    std::string ahead; ///< of the file, with its line ends converted
    std::size_t aheadUsed = 0;
    std::uint64_t readAt = 0;
    char lastRead = 0;
    bool atEnd = false;
    bool discard = false;    ///< the other side does not want the rest of the file
    bool discardAll = false; ///< nor the rest of the batch
};

} // namespace qncomm::transfer
