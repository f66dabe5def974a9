#pragma once

#include "link/Listening.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm {

/// How a search for the printer has ended.
enum class SearchEnd : std::int16_t {
    NotSearched, ///< there was none, or it was refused or cancelled
    Found,       ///< a printer has answered
    Unanswered,  ///< all was tried and no printer has answered
    LineTalks,   ///< something talks by itself, and nothing was sent
    Taken,       ///< a line that was sent came back and had no answer, and no other was sent
};

/// What a search has come to, and what it has heard where it found no printer.
struct SearchReport {
    SearchEnd end = SearchEnd::NotSearched; ///< how it ended
    LineVerdict heard = {};                 ///< the most that could be read
    std::string settings = {};              ///< at which that was heard, such as "9600,n,8,2"
};

/// Whether the search ended early because something else than a printer at its prompt is there.
bool IsKeptFrom(const SearchReport& report);

/// Why no printer was found as a sentence for a person, with its first letter small and without the
/// full stop; it says "the line" where a host may name its port. Empty for a search that has found
/// one, or was none.
std::string SentenceFor(const SearchReport& report);

/// The same as a whole: what was done and why, without the full stop, such as "Nothing was sent to
/// COM3: a program is running; it says: 42". place is what stands for the port and may be empty.
std::string Explain(const SearchReport& report, std::string_view place = {});

} // namespace qncomm
