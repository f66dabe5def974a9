#include "RemoteServer.h"

#include <gtest/gtest.h>

#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace qncomm::testing {
namespace {

constexpr int PatienceMs = 60'000; // then the server looks again without cause

} // namespace

RemoteServer::RemoteServer(Bend bend)
    : mBend(std::move(bend)), mWake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    EXPECT_EQ(mSocket.Listen(0, qnsim::Reach::ThisMachine), "");
    mThread = std::thread([this] { Run(); });
}

RemoteServer::~RemoteServer() {
    mStop = true;
    Wake();
    mThread.join();
}

void RemoteServer::Wake() const {
    ::eventfd_write(mWake.Get(), 1);
}

std::string RemoteServer::Heard() const {
    const std::lock_guard lock(mMutex);
    return mHeard;
}

std::string RemoteServer::Format() const {
    const std::lock_guard lock(mMutex);
    return mFormat;
}

void RemoteServer::Do(std::function<void(qnsim::ComPortServer&)> what) {
    {
        const std::lock_guard lock(mMutex);
        mToDo.push_back(std::move(what));
    }
    Wake();
}

void RemoteServer::SetDeaf(bool deaf) {
    mDeaf = deaf;
    Wake();
}

void RemoteServer::HangUp() {
    mHangUp = true;
    Wake();
}

void RemoteServer::Run() {
    const auto woken = mLoop.Watch(mWake.Get(), {.readable = true}, [this](FdEvents) {
        eventfd_t count = 0;
        ::eventfd_read(mWake.Get(), &count);
    });
    while (!mStop) {
        mSocket.Want(!mDeaf, !mUnsent.empty());
        mLoop.Yield(PatienceMs);
        Turn();
    }
}

void RemoteServer::Turn() {
    if (mHangUp.exchange(false)) mSocket.HangUp();
    if (mSocket.Accept()) {
        ++mConnections;
        mPort = {};
        mUnsent.clear();
    }
    if (!mSocket.Connected()) return;
    const std::vector<qnsim::HostAction> actions =
        mPort.Receive(mDeaf ? std::string() : mSocket.Read(4096));
    const std::lock_guard lock(mMutex);
    for (const qnsim::HostAction& action : actions) {
        mHeard += action.text;
        if (action.kind == qnsim::HostAction::Kind::Break) ++mBreaks;
        if (action.kind == qnsim::HostAction::Kind::DropSent) ++mTakenBack;
    }
    mHostIsGone = !mSocket.Connected();
    const qnsim::LineFormat& format = mPort.Format();
    mFormat = std::to_string(*format.baud) + "," + *format.parity + ","
              + std::to_string(*format.dataBits) + "," + std::to_string(*format.stopBits);
    for (const auto& what : std::exchange(mToDo, {}))
        what(mPort);
    std::string output = std::exchange(mPort.Output(), {});
    mUnsent += mBend ? mBend(std::move(output)) : output;
    if (!mUnsent.empty()) mUnsent.erase(0, mSocket.Write(mUnsent));
}

} // namespace qncomm::testing
