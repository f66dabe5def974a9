#include "testing/printer/InstantPrinter.h"

#include <algorithm>
#include <utility>

InstantPrinter::InstantPrinter(Answer answer) : mAnswer(std::move(answer)) {}

void InstantPrinter::Yield(std::int32_t lLimit) {
    if (ReceiveCount() > 0 && mSink)
        mSink(qncomm::SerialEventReceive);
    else
        mNow += std::max(0, lLimit);
}

std::unique_ptr<qncomm::RunningTimer> InstantPrinter::StartTimer(std::int32_t /*lInterval*/,
                                                                 std::function<void()>) {
    return std::make_unique<qncomm::RunningTimer>();
}

std::int32_t InstantPrinter::ReceiveCount() const {
    return static_cast<std::int32_t>(mWaiting.size() - mRead);
}

/// Like a real control, gives at most a buffer's worth at a time.
std::string InstantPrinter::Read() {
    std::string bytes = mWaiting.substr(mRead, BufferSize);
    mRead += bytes.size();
    if (mRead == mWaiting.size()) {
        mWaiting.clear();
        mRead = 0;
    }
    return bytes;
}

void InstantPrinter::Write(std::string_view sBytes) {
    for (const char c : sBytes) {
        if (c == '\n') continue;
        if (c != '\r')
            mLine += c;
        else
            mWaiting += mAnswer(std::exchange(mLine, {}));
    }
}
