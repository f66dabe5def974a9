#pragma once

#include "ComPortClient.h"
#include "platform/Fd.h"
#include "platform/IoResult.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace qncomm {

/// A connection to a server of remote serial ports, and what was said on it.
struct Rfc2217Session {
    static constexpr std::size_t PieceSize = 4096;
    /// How long the server may take to say that it has dropped data.
    static constexpr std::int64_t PurgeLimitUs = 1'000'000;

    Fd fd;
    ComPortClient protocol;
    std::string received;        ///< bytes of the line that nobody has read yet
    std::int64_t purgeUntil = 0; ///< when to stop waiting for a purge's answer
    bool heard = false;          ///< it has said anything at all
    bool toldModemLines = false; ///< the server had its time to tell them
    bool awaitsModemLines = false;

    /// Takes one piece of what has come, if anything has. Lost when the connection has ended.
    IoResult Receive(std::size_t most, std::int64_t lNowUs);
    /// Sends what the connection takes of what is to be sent.
    IoResult Flush();
    /// Drops what has come, here and at the server.
    void DiscardInput(std::int64_t lNowUs);
};

} // namespace qncomm
