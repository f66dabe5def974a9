#pragma once

#include "common/Collection.h"

#include <cstdint>
#include <memory>
#include <string>

namespace qncomm {

/// Something that is known of line or printer.
struct clsLiveFact {
    /// "line", "line detail", "printer", "model", "version", "port", "address", "settings" or
    /// "generation".
    std::string Name;
    std::string Value;      ///< UTF-8; empty, or of a state "unknown", while it is not known
    std::int32_t AgeMs = 0; ///< since it was last proven; 0 for what is not known
    std::string LearntFrom; ///< a word such as "reply", "search" or "port"; "nothing" for nothing
};

/// Facts in that order, keyed by Name.
using LiveFacts = Collection<std::shared_ptr<clsLiveFact>>;

} // namespace qncomm
