#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qncomm {

/// The bytes that have come and have not been read.
class ReceivePath {
  public:
    explicit ReceivePath(std::size_t capacity) : mBytes(capacity) {}

    std::size_t Capacity() const { return mBytes.size(); }
    /// Keeps what waits, also when it is more than the new capacity.
    void SetCapacity(std::size_t capacity);

    std::size_t Count() const { return mEnd - mBegin; }
    bool Full() const { return Count() == Capacity(); }

    /// The free space to read into; Commit tells how much of it was filled.
    std::span<char> Space();
    void Commit(std::size_t count) { mEnd += count; }

    void Clear() { mBegin = mEnd = 0; }
    std::string TakeAll();

    /// The first line without its end (CR LF, LF or CR), nothing while there is no whole one. A CR
    /// that comes last may be half of a line end: it counts only when bLastCrEnds.
    std::optional<std::string> TakeLine(bool bLastCrEnds);
    bool EndsInCr() const { return Count() > 0 && mBytes[mEnd - 1] == '\r'; }

    std::int16_t threshold = 0;

  private:
    std::vector<char> mBytes;
    std::size_t mBegin = 0;
    std::size_t mEnd = 0;
};

} // namespace qncomm
