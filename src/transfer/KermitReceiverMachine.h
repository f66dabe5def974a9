#pragma once

#include "KermitCoding.h"
#include "KermitReader.h"
#include "transfer/KermitReceiver.h"

#include <map>

namespace qncomm::transfer {

enum class KermitReceiver::State {
    Init,  ///< no sender has spoken yet
    Ready, ///< a file or the end of the batch is awaited
    File,  ///< a file is on its way
};

/// What a receiver remembers.
struct KermitReceiver::Machine {
    explicit Machine(const KermitOptions& given) : options(given) {}

    KermitOptions options;
    KermitReader reader;
    KermitTerms terms;
    KermitCoding coding{terms, KermitPrefixing::All};
    State state = State::Init;
    unsigned low = 0;                      ///< sequence of the packet that comes next in the file
    unsigned seen = 0;                     ///< packets after it, up to the newest one
    std::map<unsigned, std::string> early; ///< data packets that came before their turn
    std::array<std::string, kermit::Sequences>
        replies;          ///< what each sequence was answered with last
    KermitPacket current; ///< whose turn it is
    std::string content;  ///< its file bytes
    std::uint64_t position = 0;
    bool discard = false; ///< the file is not wanted
    bool whole = false;   ///< the file that is being closed
    bool pendingCr = false;
    bool broken = false;    ///< what streamed was not whole: the file is to be announced again
    Time askedAt{0};        ///< for that
    std::uint64_t skip = 0; ///< bytes of the file announced again that are here already
    std::string said;       ///< to streaming data, the last time
    Time saidAt{0};
    int silences = 0; ///< in a row
};

} // namespace qncomm::transfer
