#pragma once

#include "trace/TraceReader.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// Takes the contents of files and programs out of a trace and leaves the dialogue: commands,
/// replies, errors, events and times. What is taken out leaves its place and its length.
///
/// Contents are: what follows a LOAD command by the length it names, everything from the start of a
/// file transfer (TRANSFER, or a Kermit or ZModem packet) to the next command after it or the end
/// of the port's use, program lines in both directions, and what a COPY to a channel prints.
class TraceRedaction {
  public:
    /// The records that stand for this one, in their order. Records are given in theirs.
    std::vector<TraceRecord> Redact(const TraceRecord& record);

  private:
    struct Direction {
        std::string line; ///< what has come of the line that is not ended
        bool hidden = false;
    };

    bool EndsTransfer(const TraceRecord& record) const;
    bool Hides(TraceKind kind, std::string_view piece);
    void OnCommand(const std::string& line);
    void Follow(std::string_view bytes);

    std::array<Direction, 2> mDirections; ///< sent, received
    std::size_t mLoading = 0;             ///< sent bytes that are still contents
    bool mTransfer = false;
    bool mPrinting = false; ///< a reply is a file's contents
    std::string mTail;      ///< the last bytes received
};

/// Writes a redacted trace of sFrom to sTo, which is created or replaced. Says what could not be
/// read or written; sTo is then not to be used.
IoResult RedactTrace(const std::string& sFrom, const std::string& sTo);

} // namespace qncomm
