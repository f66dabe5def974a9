#pragma once

#include "console/LineReader.h"
#include "console/StatusLine.h"

#include <deque>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// Asks for lines of text: answers that were given beforehand come first, in their order; then the
/// user at the terminal is asked. Without either there is no answer, so a run without input never
/// blocks.
class ConsoleAsker {
  public:
    /// All must outlive the object.
    ConsoleAsker(std::ostream& err, StatusLine& status, LineReader& input)
        : mErr(err), mStatus(status), mInput(input) {}

    /// One more answer (UTF-8).
    void Give(std::string sAnswer) { mGiven.push_back(std::move(sAnswer)); }
    /// Whether an answer that was given beforehand is left.
    bool HasGiven() const { return !mGiven.empty(); }

    /// The answer (UTF-8) to a question; nothing when there is none or the input ended.
    std::optional<std::string> Ask(std::string_view sQuestion);

    /// Shows a text (UTF-8), on a line of its own.
    void Tell(std::string_view sLine);

  private:
    std::ostream& mErr;
    StatusLine& mStatus;
    LineReader& mInput;
    std::deque<std::string> mGiven;
};

} // namespace qncomm
