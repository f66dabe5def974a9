#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// The line by which a reply is known to belong to what was sent: the printer's echo of the first
/// line that went out since the last reply. A printer that does not echo that one (it need not echo
/// a program line) echoes the last.
class AwaitedEcho {
  public:
    /// Notes text that has left. A line may come in pieces, and what follows it may be no text.
    void Sent(std::string_view text);
    /// Forgets what was sent.
    void Clear() { *this = {}; }

    /// Whether a whole line was sent, so that an echo is to be expected.
    bool IsAwaited() const { return !mFirst.empty(); }
    /// Where the echo begins in a received line, without its line end, that is the echo or ends in
    /// it: noise, or output that ended in the middle of a line, may stand before it. Neither the
    /// eighth bit, which not every line carries, nor control characters count, and of a long line
    /// the printer may have kept and echoed the beginning alone.
    std::optional<std::size_t> FindIn(std::string_view line) const;

  private:
    std::string mCurrent; ///< the line that has not ended yet
    std::string mFirst;
    std::string mLast;
};

} // namespace qncomm
