#pragma once

// One transfer between the printer's storage and the other end of its line.

#include "Errors.h"
#include "StorageSink.h"
#include "simulator/Options.h"

#include "transfer/TransferEngine.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qnsim {

/// It has the channel from its start to its end: every byte that arrives is its own and nothing is
/// echoed. After the protocol's last word it stays a moment longer, so that the prompt does not run
/// into that word, and after a failure until the line is quiet, so that what the other side had
/// under way is not read as commands.
class FileTransfer {
  public:
    enum class Protocol { Kermit, ZModem };

    /// Receives files into the storage's current device. A line of seven bits is for Kermit alone.
    FileTransfer(Protocol protocol, bool sevenBits, Storage& storage, Micros now);
    /// Sends one file.
    FileTransfer(Protocol protocol, bool sevenBits, std::string name, std::string content,
                 Micros now);

    /// Hands in bytes that arrived; returns how many of them belong to the transfer. Those that
    /// follow its end do not.
    std::size_t Receive(std::string_view bytes, Micros now);
    /// Does what is due by now and adds at most room bytes for the line to the output.
    void Work(Micros now, std::size_t room, std::string& out);
    /// Stops it at once; what tells the other side is added to the output.
    void Cancel(Micros now, std::string& out);

    /// When Work has something to do without further input; absent = nothing is awaited.
    std::optional<Micros> NextDue() const;
    /// Bytes wait for room on the line.
    bool HasOutput() const { return mHasOutput; }
    /// The channel is the console's again.
    bool IsOver() const { return mOver; }
    /// How it ended: None when every file travelled whole.
    Error Result() const;

  private:
    void Serve(Micros now);
    void DropUnwanted(Micros now);
    void LookForEnd(Micros now);
    bool Succeeded() const;
    std::size_t TakeLineEnd(std::string_view bytes, Micros now);

    std::unique_ptr<qncomm::transfer::TransferEngine> mEngine;
    std::unique_ptr<qncomm::transfer::FileSource> mSource; ///< null when it receives
    std::unique_ptr<StorageSink> mSink;                    ///< null when it sends
    bool mHasOutput = false;
    bool mLineEndTaken = false; ///< the one behind the protocol's last packet
    bool mOver = false;
    std::optional<Micros> mEndedAt; ///< the protocol's last word was said
    Micros mFreeAt = 0;             ///< the moment after it is over then
};

} // namespace qnsim
