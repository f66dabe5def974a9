#pragma once

#include "KermitFrame.h"
#include "transfer/KermitOptions.h"

namespace qncomm::transfer {

/// What the two sides have agreed on.
struct KermitTerms {
    std::size_t longest =
        80; ///< length of a packet that the other side takes, as its own length field counts
    bool longPackets = false;
    unsigned window = 1;
    unsigned check = 1;
    char controlPrefix = '#'; ///< of what the other side sends
    char bitPrefix = 0;       ///< 0: none
    char repeatPrefix = 0;    ///< 0: none
    bool attributes = false;
    bool resume = false;
    bool streaming = false; ///< data packets are not acknowledged

    /// Longest data field of a packet.
    [[nodiscard]] std::size_t DataRoom() const;
};

/// What the sender says first.
std::string ProposeKermitTerms(const KermitOptions& options);

/// What both can, from the proposal that a receiver heard; `reply` is what it answers.
KermitTerms AcceptKermitTerms(const KermitOptions& options, std::string_view proposal,
                              std::string& reply);

/// What both can, from the answer that a sender heard to its proposal.
KermitTerms ConcludeKermitTerms(const KermitOptions& options, std::string_view reply);

} // namespace qncomm::transfer
