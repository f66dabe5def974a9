#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm {

/// The answer to one probe of the search, as far as it has come. It says how long it may take: a
/// printer that answers slowly gets its time, one that talks of other things does not.
class SearchAnswer {
  public:
    /// To a probe of these bytes that asks for a word, at that many bits per second.
    /// That many bytes may come before, as the answer to something else.
    SearchAnswer(std::string_view probe, std::string_view word, double rate,
                 std::size_t before = 0);

    /// Takes everything that has come, with its line ends as CR LF.
    void Take(std::string_view text);
    /// It holds the word and, behind it, "Ok".
    bool Complete() const { return mComplete; }
    /// The whole probe has come back.
    bool Echoed() const { return mEchoed; }
    /// How long all of it may take, in ms since the probe was sent.
    std::int32_t LimitMs() const { return mLimitMs; }

  private:
    std::string mEcho; ///< without line ends, as what came is compared
    std::string mWord;
    std::int32_t mNoAnswerMs; ///< when the probe has failed
    std::int32_t mLineMs;     ///< what echo and answer need on the line
    std::int32_t mLimitMs;
    bool mComplete = false;
    bool mEchoed = false;
};

} // namespace qncomm
