#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qncomm {

/// The bytes that were written and that the channel has not taken yet.
class TransmitQueue {
  public:
    explicit TransmitQueue(std::size_t capacity) : mCapacity(capacity) {}

    std::size_t Capacity() const { return mCapacity; }
    void SetCapacity(std::size_t capacity) { mCapacity = capacity; }

    std::size_t Count() const { return mBytes.size() - mSent; }
    std::string_view Waiting() const { return std::string_view(mBytes).substr(mSent); }

    void Append(std::string_view bytes) { mBytes += bytes; }
    void Remove(std::size_t count) {
        mSent += count;
        if (mSent == mBytes.size()) Clear();
    }
    void Clear() {
        mBytes.clear();
        mSent = 0;
    }

  private:
    std::size_t mCapacity;
    std::string mBytes;
    std::size_t mSent = 0; ///< bytes at the start that have gone
};

} // namespace qncomm
