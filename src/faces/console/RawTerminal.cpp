#include "console/RawTerminal.h"

#include "platform/Suspension.h"

#include <csignal>

namespace qncomm {

bool RawTerminal::Enter() {
    if (StopInBackground(mFd, SIGTTOU)) return false;
    termios now{};
    if (::tcgetattr(mFd, &now) != 0) return true;
    if (!mFormer) mFormer = std::make_unique<termios>(now);
    ::cfmakeraw(&now);
    now.c_cc[VMIN] = 1;
    now.c_cc[VTIME] = 0;
    ::tcsetattr(mFd, TCSADRAIN, &now);
    return true;
}

void RawTerminal::Leave() {
    if (mFormer && !IsInBackground(mFd)) ::tcsetattr(mFd, TCSADRAIN, mFormer.get());
}

} // namespace qncomm
