#pragma once

#include <memory>

#include <termios.h>

namespace qncomm {

/// Puts a terminal into raw mode (each key at once, no echo, no signals from keys, output as it is)
/// until it is left, at the latest with the object's life. A descriptor that is no terminal is left
/// alone, and so is a terminal that another job has.
class RawTerminal {
  public:
    /// fd stays the caller's and must stay open for the object's life.
    explicit RawTerminal(int fd) : mFd(fd) {}
    ~RawTerminal() { Leave(); }
    RawTerminal(const RawTerminal&) = delete;
    RawTerminal& operator=(const RawTerminal&) = delete;

    /// Sets raw mode. In the background it stops the program instead, for when it is continued, and
    /// returns false.
    bool Enter();
    /// Puts the terminal back as it was before it was entered first.
    void Leave();

  private:
    int mFd;
    std::unique_ptr<termios> mFormer; ///< none until it was entered
};

} // namespace qncomm
