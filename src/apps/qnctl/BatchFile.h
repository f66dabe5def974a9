#pragma once

#include "MemberTexts.h"
#include "Outcome.h"

#include "console/LineReader.h"

#include <optional>
#include <string>
#include <string_view>
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

/// Reads a batch to its end and understands all of it, so that a mistake is found before the first
/// call. The outcome is set when it could not; name stands for the batch in it. Throws what the
/// input's loop throws.
std::vector<BatchLine> ReadBatch(const std::string& name, qncomm::LineReader& input,
                                 Outcome& outcome);

} // namespace qnctl
