#pragma once

#include <memory>

struct termios;

namespace qncomm {

/// Puts a terminal into raw mode (each key at once, no echo, no signals from keys, output as it is)
/// for the object's life. A descriptor that is no terminal is left alone.
class RawTerminal {
  public:
    /// fd stays the caller's and must stay open for the object's life.
    explicit RawTerminal(int fd);
    ~RawTerminal();
    RawTerminal(const RawTerminal&) = delete;
    RawTerminal& operator=(const RawTerminal&) = delete;

  private:
    int mFd;
    std::unique_ptr<termios> mFormer;
};

} // namespace qncomm
