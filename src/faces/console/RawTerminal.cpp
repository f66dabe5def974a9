#include "console/RawTerminal.h"

#include <termios.h>

namespace qncomm {

RawTerminal::RawTerminal(int fd) : mFd(fd) {
    termios now{};
    if (::tcgetattr(mFd, &now) != 0) return;
    mFormer = std::make_unique<termios>(now);
    ::cfmakeraw(&now);
    now.c_cc[VMIN] = 1;
    now.c_cc[VTIME] = 0;
    ::tcsetattr(mFd, TCSADRAIN, &now);
}

RawTerminal::~RawTerminal() {
    if (mFormer) ::tcsetattr(mFd, TCSADRAIN, mFormer.get());
}

} // namespace qncomm
