#pragma once

#include "platform/Reactor.h"

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>

namespace qncomm {

/// Reads lines from a terminal or a pipe through the loop, so that the rest of the program stays
/// alive meanwhile and a cancel is seen.
class LineReader {
  public:
    /// The reactor must outlive the reader; the descriptor is not closed.
    LineReader(Reactor& reactor, int fd) : mReactor(reactor), mFd(fd) {}

    /// Whether the descriptor is a terminal, so that a user can answer.
    bool IsTerminal() const;

    /// Bytes of a line: a longer one is no line of a person's or a batch's.
    static constexpr std::size_t LongestInputLine = std::size_t{1024} * 1024;

    /// The next line without its end; nothing at the end of the input. Throws what Yield throws,
    /// and raises, source "LineReader", 5 for a line of more than LongestInputLine bytes and 57 for
    /// an input that cannot be read.
    std::optional<std::string> ReadLine();

  private:
    Reactor& mReactor;
    int mFd;
    std::string mRest;
    std::size_t mSought = 0; ///< how much of mRest was searched for the line's end
};

/// Reads the answer to a question that stands on err. When none comes, because the input ends or
/// the user cancels, it ends the question's line, as the answer's own line end would have.
std::optional<std::string> ReadAnswer(LineReader& input, std::ostream& err);

} // namespace qncomm
