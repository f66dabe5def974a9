#pragma once

#include "link/SearchReport.h"

#include <string>
#include <vector>

namespace qncomm {

/// What a search has heard that was no printer's answer.
class HeardAnswers {
  public:
    /// Takes what came at a rate and format.
    void Add(const std::string& rate, const std::string& format, const HeardLine& heard);
    /// What of it could be read best, at which settings; the report's end stays as it is.
    void TellIn(SearchReport& report) const;
    /// The rates at which something came that was not read as it was sent; those alone at which it
    /// was nearly text where there are such.
    std::vector<std::string> DamagedRates() const;

  private:
    struct Answer {
        std::string rate;
        std::string format;
        LineVerdict verdict;
    };
    std::vector<Answer> mAnswers; ///< without the silent ones
};

} // namespace qncomm
