#pragma once

#include <cstddef>
#include <cstdint>

namespace qncomm::transfer {

/// How long the pieces should be that a file is cut into: long ones waste little on their frames,
/// short ones waste little when one byte is damaged. The error rate that was seen decides.
class PieceLength {
  public:
    struct Limits {
        std::size_t first; ///< to begin with
        std::size_t shortest;
        std::size_t longest;
        double frame; ///< bytes that each piece costs beyond its content
        double
            evidence; ///< bytes that have to travel well for each byte of a piece beyond the first
        double lostPieces; ///< pieces that one damaged byte costs
    };

    explicit PieceLength(const Limits& limits)
        : mLimits(limits), mCap(limits.longest), mGrown(static_cast<double>(limits.first)) {}

    /// `bytes` travelled well.
    void Travelled(std::size_t bytes);
    /// One piece was lost.
    void Lost();
    /// No longer than this until told otherwise (never below the shortest).
    void Limit(std::size_t longest);

    [[nodiscard]] std::size_t Current() const;
    /// Errors for each byte, 0 when none was seen.
    [[nodiscard]] double ErrorRate() const;

  private:
    Limits mLimits;
    std::size_t mCap;
    double mGrown;
    double mBytes = 0;
    double mErrors = 0;
};

} // namespace qncomm::transfer
