#include "endpoints/PrinterServer.h"

#include <algorithm>
#include <utility>

namespace qnsim {
namespace {

constexpr std::size_t PieceSize = 64UL * 1024;
constexpr std::size_t BacklogLimit = 64UL * 1024;

} // namespace

bool PrinterServer::Run() {
    for (;;) {
        mBefore = std::exchange(mNow, mSleeper.Now());
        FollowHost();
        Exchange();
        if (mPrinter.LineCut() && mOutput.empty()) return false;
        Sleep();
        if (mStopped) return true;
    }
}

void PrinterServer::FollowHost() {
    mEndpoint.Refresh();
    const bool there = mEndpoint.Connected();
    if (there != mHostThere && there) {
        mPrinter.HostOpened(mNow);
        mPrinter.SetHostLines(true, true, mNow);
    }
    if (there != mHostThere && !there) {
        mPrinter.HostClosed(mNow);
        mOutput.clear();
    }
    mHostThere = there;
    // A host that sets its line and listens wakes nobody up: by now it has had these settings since
    // then, and the printer has not said a word to others.
    if (there) mPrinter.SetHostFormat(mEndpoint.HostFormat(), mBefore);
}

void PrinterServer::CarryOut(const HostAction& action) {
    switch (action.kind) {
    case HostAction::Kind::Bytes:
        mPrinter.FromHost(action.text, mNow);
        break;
    case HostAction::Kind::Format:
        mPrinter.SetHostFormat(action.format, mNow);
        break;
    case HostAction::Kind::Lines:
        mPrinter.SetHostLines(action.dtr, action.rts, mNow);
        break;
    case HostAction::Kind::Break:
        mPrinter.Break(mNow);
        break;
    case HostAction::Kind::DropSent:
        mPrinter.DiscardFromHost(mNow);
        break;
    case HostAction::Kind::DropReceived:
        mPrinter.DiscardToHost(mNow);
        mOutput.clear();
        break;
    }
}

std::size_t PrinterServer::Room() const {
    if (mPrinter.Backlog() >= BacklogLimit) return 0;
    // Bytes that a paced line cannot carry yet are left unread: a flush by the host still drops
    // them, as it does in the buffer of a real port.
    return std::min(PieceSize, mPrinter.Room(mNow));
}

void PrinterServer::Exchange() {
    if (const std::size_t room = Room(); mHostThere && room > 0) {
        for (const HostAction& action : mEndpoint.Receive(room))
            CarryOut(action);
    }
    mPrinter.Advance(mNow);
    mEndpoint.ShowLines(mPrinter.Dsr(), mPrinter.Cts());
    if (mOutput.empty()) mOutput = mPrinter.ToHost(mNow, PieceSize);
    if (mOutput.empty() || !mHostThere) return;
    mEndpoint.ShowErrors(mPrinter.TakeHostErrors());
    mOutput.erase(0, mEndpoint.Write(mOutput));
}

void PrinterServer::Sleep() {
    mEndpoint.Want(Room() > 0, !mOutput.empty());
    const auto due = mPrinter.NextDue();
    // While the host does not take its bytes, there is no use in waking up to make more of them.
    const bool blocked = !mOutput.empty() && due && *due <= mNow;
    mSleeper.SleepUntil(blocked ? std::nullopt : due);
}

} // namespace qnsim
