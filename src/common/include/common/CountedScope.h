#pragma once

namespace qncomm {

/// Counts one up for as long as it lives: how deep something is nested. The count outlives it.
class CountedScope {
  public:
    /// Adds 1 to the count now and takes it away at the object's end.
    explicit CountedScope(int& count) : mCount(count) { ++mCount; }
    ~CountedScope() { --mCount; }
    CountedScope(const CountedScope&) = delete;
    CountedScope& operator=(const CountedScope&) = delete;

  private:
    int& mCount;
};

} // namespace qncomm
