#pragma once

#include "MemberTexts.h"
#include "Outcome.h"

#include "console/LineReader.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qnctl {

/// A line of a batch that has been understood.
struct BatchLine {
    std::string place; ///< "FILE:LINE"
    MemberCall call;
};

/// The words of a line: blanks and tabs part them, double quotes keep them together, two double
/// quotes inside of quotes are one. A "#" at the start of a word begins a comment. Nothing for a
/// quote that does not end.
std::optional<std::vector<std::string>> WordsOf(std::string_view line);

/// The lines of a batch as they come.
class BatchReader {
  public:
    /// sName stands for the batch in outcomes; input must outlive the object. bKept: the lines are
    /// kept until the last one has come, so that there may be no end of them only where they are
    /// not.
    BatchReader(std::string sName, qncomm::LineReader& input, bool bKept)
        : mName(std::move(sName)), mInput(input), mKept(bKept) {}

    /// The next line that is a call. Nothing at the end, and, with the outcome set, for a line that
    /// cannot be understood; the one behind it can be read all the same. Throws what the input's
    /// loop throws.
    std::optional<BatchLine> Next(Outcome& outcome);

  private:
    std::string Place() const { return mName + ":" + std::to_string(mNumber); }

    std::string mName;
    qncomm::LineReader& mInput;
    bool mKept;
    std::int64_t mNumber = 0; ///< of the last line that was read, from 1 on
};

/// Reads a batch to its end and understands all of it, so that a mistake is found before the first
/// call. The outcome is set when it could not. Throws what the input's loop throws.
std::vector<BatchLine> ReadBatch(BatchReader& reader, Outcome& outcome);

} // namespace qnctl
