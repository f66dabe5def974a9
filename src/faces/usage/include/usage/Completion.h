#pragma once

#include "usage/Usage.h"

#include <functional>
#include <string>
#include <vector>

namespace qncomm {

/// A word that a shell can offer.
struct Offer {
    std::string word; ///< the whole word
    std::string help; ///< what it means, one line; may be empty
};

/// What can stand in a word's place.
struct Offers {
    std::vector<Offer> words; ///< whole words that begin as the one that is typed
    bool files = false;       ///< names of files belong here, which a shell knows best
};

/// The words that a value of that name, such as "ADDRESS", can be just now; empty when nobody
/// knows.
using LiveNames = std::function<std::vector<Offer>(const std::string& sValue)>;

/// What the last one of the words behind the program's name can become: those that begin as it
/// does. Nothing where the words before it are no beginning of a command line.
Offers Complete(const Usage& program, const std::vector<std::string>& words, const LiveNames& live);

} // namespace qncomm
