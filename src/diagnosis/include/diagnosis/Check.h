#pragma once

#include <string>
#include <vector>

namespace qncomm {

/// How a check came out. What cannot be seen never passes.
enum class CheckResult {
    Pass,    ///< looked at, and as it should be
    Warning, ///< not as it should be, though it need not be what keeps a printer from answering
    Fail,    ///< keeps a printer from answering
    Skipped, ///< means nothing for a port of this kind, or after what failed before it
    Unknown, ///< this user or this line does not let it be seen
};

/// One row of a diagnosis.
struct Check {
    std::string name;                          ///< what was looked at, such as "permission"
    CheckResult result = CheckResult::Unknown; ///< how it came out
    std::string text;                          ///< what was seen, as a sentence
};

/// The rows in the order in which they were looked at.
using Checks = std::vector<Check>;

/// "pass", "warning", "fail", "skipped" or "unknown".
const char* NameOf(CheckResult result);

} // namespace qncomm
