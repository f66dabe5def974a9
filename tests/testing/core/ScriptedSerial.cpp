#include "testing/core/ScriptedSerial.h"

#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "link/clsDataLink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <regex>

namespace qncomm::testing {

ScriptedSerial::ScriptedSerial(ManualLoop& loop) : mLoop(loop) {
    mLoop.AddSource(*this);
}

ScriptedSerial::~ScriptedSerial() {
    mLoop.RemoveSource(*this);
    for (const Step& step : mSteps)
        ADD_FAILURE() << "never sent: " << step.expected;
}

ScriptedSerial& ScriptedSerial::Expect(std::string sBytes) {
    mSteps.push_back({std::move(sBytes), {}});
    return *this;
}

ScriptedSerial& ScriptedSerial::Reply(std::string sBytes, std::int32_t lDelay) {
    mSteps.back().replies.emplace_back(lDelay, std::move(sBytes));
    return *this;
}

ScriptedSerial& ScriptedSerial::Exchange(const std::string& sLine,
                                         const std::vector<std::string>& lines) {
    std::string reply = sLine + "\r\n";
    for (const std::string& line : lines)
        reply += line + "\r\n";
    return Expect(sLine + "\r\n").Reply(reply + "Ok\r\n");
}

ScriptedSerial& ScriptedSerial::Handshake() {
    return Exchange("PRINT SYSVAR(18):PRINT SYSVAR(19):SYSVAR(18)=-1:SYSVAR(19)=2", {"-1", "2"});
}

void ScriptedSerial::Arrive(std::string sBytes, std::int32_t lDelay) {
    const std::int64_t due = mLoop.NowMs() + lDelay;
    const auto place =
        std::upper_bound(mArrivals.begin(), mArrivals.end(), due,
                         [](std::int64_t time, const Arrival& a) { return time < a.due; });
    mArrivals.insert(place, {due, std::move(sBytes)});
}

void ScriptedSerial::Vanish() {
    mOpen = false;
    mVanished = true;
    mLog.emplace_back("Vanish");
}

void ScriptedSerial::SetPortNumber(std::int16_t iPort) {
    mLog.push_back("Port " + std::to_string(iPort));
    const bool another = mOpen && iPort != mPortNumber;
    if (another) SetPortOpen(false);
    mPortNumber = iPort;
    if (another) SetPortOpen(true);
}

void ScriptedSerial::SetPortSettings(const std::string& sSettings) {
    static const std::regex form(
        "(300|600|1200|2400|4800|9600|19200|38400|57600|115200),[neosmNEOSM],[78],[12]");
    if (!std::regex_match(sSettings, form)) RaiseRuntimeError(RtInvalidCall, "PDQComm");
    mSettings = sSettings;
    mLog.push_back("Settings " + sSettings);
}

void ScriptedSerial::SetHandshaking(std::int16_t iMode) {
    mHandshaking = static_cast<std::int16_t>(iMode & SW_And_HW_Flowcontrol);
    mLog.push_back("Handshaking " + std::to_string(iMode));
}

void ScriptedSerial::SetPortOpen(bool bOpen) {
    mLog.emplace_back(bOpen ? "Open" : "Close");
    if (bOpen == mOpen) return;
    if (bOpen && mOnOpen) mOnOpen();
    if (bOpen && !mValidPorts.empty() && !mValidPorts.contains(mPortNumber))
        throw QNError(SerialErrNoSuchPort, "PDQComm", "There is no such port.");
    if (!bOpen) Empty();
    mOpen = bOpen;
}

bool ScriptedSerial::ProbePort(std::int16_t iPort) {
    mProbed.push_back(iPort);
    return mValidPorts.contains(iPort);
}

void ScriptedSerial::HoldBreak(bool bOn) {
    mLog.emplace_back(bOn ? "Break on" : "Break off");
    if (mOnBreak) mOnBreak(bOn);
}

void ScriptedSerial::SetReceiveThreshold(std::int16_t iBytes) {
    mThreshold = iBytes;
    mSignalled = 0;
    if (mOnThreshold) mOnThreshold(iBytes);
    mLog.push_back("Threshold " + std::to_string(iBytes));
}

void ScriptedSerial::SetBufferSizes(std::int32_t lReceive, std::int32_t lTransmit) {
    mReceiveSize = static_cast<std::size_t>(std::max(lReceive, 1));
    mTransmitSize = lTransmit;
    mLog.push_back("Buffers " + std::to_string(lReceive) + " " + std::to_string(lTransmit));
}

std::int32_t ScriptedSerial::ReceiveCount() const {
    TakeArrivals();
    return static_cast<std::int32_t>(mWaiting.size());
}

std::int32_t ScriptedSerial::TransmitCount() const {
    if (!mDrainPerMs) return 0;
    const double drained = static_cast<double>(mLoop.NowMs() - mDrainedAt) * *mDrainPerMs;
    return static_cast<std::int32_t>(std::max(0.0, mQueued - std::floor(drained)));
}

void ScriptedSerial::FlushReceive() {
    mFlushes.emplace_back("Receive");
    DropArrived();
}

void ScriptedSerial::FlushTransmit() {
    mFlushes.emplace_back("Transmit");
    mQueued = 0;
}

void ScriptedSerial::Empty() {
    DropArrived();
    mQueued = 0;
}

void ScriptedSerial::DropArrived() {
    while (!mArrivals.empty() && mArrivals.front().due <= mLoop.NowMs())
        mArrivals.pop_front();
    mWaiting.clear();
    mSignalled = 0;
}

std::string ScriptedSerial::Read() {
    TakeArrivals();
    mSignalled = 0;
    return std::exchange(mWaiting, {});
}

std::string ScriptedSerial::ReadLine(std::int32_t lTimeout) {
    constexpr std::int32_t lineEnd = 50; // ms for which a CR that came last may be half of one
    const std::int64_t end = mLoop.NowMs() + lTimeout;
    for (;;) {
        TakeArrivals();
        const std::size_t at = mWaiting.find_first_of("\r\n");
        const bool half = at + 1 == mWaiting.size() && mWaiting[at] == '\r';
        if (at != std::string::npos && !half) return TakeLine(at);
        const std::int64_t until = half ? std::min(end, mLoop.NowMs() + lineEnd) : end;
        if (WaitUntil(until)) continue;
        return half ? TakeLine(at) : Read();
    }
}

/// Takes the line that ends at that byte, and its end.
std::string ScriptedSerial::TakeLine(std::size_t at) {
    std::string line = mWaiting.substr(0, at);
    mWaiting.erase(0, at + (mWaiting.compare(at, 2, "\r\n") == 0 ? 2 : 1));
    return line;
}

/// Moves the clock until more has come or the time is there; whether more has come.
bool ScriptedSerial::WaitUntil(std::int64_t time) {
    if (!mOpen) return false;
    const std::size_t before = mWaiting.size();
    mLoop.MoveTo(mArrivals.empty() ? time : std::min(time, mArrivals.front().due));
    TakeArrivals();
    return mWaiting.size() > before;
}

bool ScriptedSerial::WaitForReceive(std::int32_t lTimeout) {
    return ReceiveCount() > 0 || WaitUntil(mLoop.NowMs() + std::max(0, lTimeout));
}

void ScriptedSerial::Write(std::string_view sBytes) {
    if (!mOpen) return;
    EXPECT_LE(static_cast<std::int32_t>(sBytes.size()), mTransmitSize - TransmitCount())
        << "more than the transmit buffer holds";
    mQueued = mDrainPerMs ? TransmitCount() + static_cast<std::int32_t>(sBytes.size()) : 0;
    mDrainedAt = mLoop.NowMs();
    mSent += sBytes;
    mUnmatched += sBytes;
    if (mResponder)
        mResponder(mUnmatched);
    else
        PlayScript();
}

void ScriptedSerial::SetReceiveMode(std::int16_t iMode) {
    mReceiveMode = iMode;
    mLog.push_back("Mode " + std::to_string(iMode));
}

void ScriptedSerial::SetTransferKind(std::int16_t iKind) {
    mLog.push_back("Kind " + std::to_string(iKind));
}

void ScriptedSerial::SetBinaryProtocol(std::int16_t iProtocol) {
    mLog.push_back("Protocol " + std::to_string(iProtocol));
}

void ScriptedSerial::SendFile(const std::string& sPath) {
    StartTransfer("SendFile " + sPath);
}

void ScriptedSerial::ReceiveFile(const std::string& sPath) {
    StartTransfer("ReceiveFile " + sPath);
}

void ScriptedSerial::SetTransferState(std::int16_t iState) {
    mLog.push_back("TransferState " + std::to_string(iState));
    if (mOnAbort) mOnAbort();
    if (mAnswerToAbort) ReportLater({0, *mAnswerToAbort}, 1);
}

void ScriptedSerial::StartTransfer(const std::string& what) {
    mLog.push_back(what);
    if (!mOpen && mTransfer.empty()) ReportLater({0, TransferFailed}, 0);
    std::int32_t delay = 0;
    for (const Reported& reported : mTransfer)
        ReportLater(reported, delay += reported.delay);
}

void ScriptedSerial::ReportLater(const Reported& reported, std::int32_t delay) {
    mLoop.After(delay, [this, reported] {
        const bool refused =
            !reported.heard.empty() && mLook.refused && mLook.refused(reported.heard);
        mTransferState = refused ? std::int16_t{TransferFailed} : reported.state;
        mTransferBytes = reported.bytes;
        if (mSink) mSink(SerialEventTransfer);
    });
}

std::optional<std::int64_t> ScriptedSerial::NextDue() const {
    if (mVanished && mSink) return mLoop.NowMs();
    if (OwesReceive()) return mLoop.NowMs();
    std::optional<std::int64_t> due;
    if (!mArrivals.empty()) due = mArrivals.front().due;
    if (TransmitCount() > 0 && *mDrainPerMs > 0)
        due = std::min(due.value_or(mLoop.NowMs() + 1), mLoop.NowMs() + 1);
    return due;
}

void ScriptedSerial::Dispatch() {
    if (mVanished && mSink) {
        mVanished = false;
        mSink(SerialEventPortLost);
        return;
    }
    TakeArrivals();
    if (!OwesReceive()) return;
    mSignalled = mWaiting.size();
    const EventSink sink = mSink; // it may detach itself
    sink(SerialEventReceive);
}

bool ScriptedSerial::OwesReceive() const {
    return mSink && mThreshold > 0 && mWaiting.size() > mSignalled
           && mWaiting.size() >= static_cast<std::size_t>(mThreshold);
}

void ScriptedSerial::TakeArrivals() const {
    while (!mArrivals.empty() && mArrivals.front().due <= mLoop.NowMs()) {
        std::string& bytes = mArrivals.front().bytes;
        const std::size_t space =
            mOpen ? mReceiveSize - std::min(mReceiveSize, mWaiting.size()) : bytes.size();
        if (mOpen) mWaiting += bytes.substr(0, space);
        bytes.erase(0, space);
        if (!bytes.empty()) return; // the buffer is full
        mArrivals.pop_front();
    }
}

void ScriptedSerial::PlayScript() {
    while (!mUnmatched.empty()) {
        if (mSteps.empty()) {
            ADD_FAILURE() << "sent beyond the script: " << mUnmatched;
            mUnmatched.clear();
            return;
        }
        const std::string& expected = mSteps.front().expected;
        const std::size_t common = std::min(expected.size(), mUnmatched.size());
        if (expected.compare(0, common, mUnmatched, 0, common) != 0) {
            ADD_FAILURE() << "expected: " << expected << "\nbut sent: " << mUnmatched;
            mUnmatched.clear();
            return;
        }
        if (common < expected.size()) return;
        const Step step = std::move(mSteps.front());
        mSteps.pop_front();
        mUnmatched.erase(0, common);
        std::int32_t delay = 0;
        for (const auto& [after, bytes] : step.replies)
            Arrive(bytes, delay += after);
    }
}

} // namespace qncomm::testing
