#pragma once

#include "common/QNError.h"
#include "serial/PDQComm.h"
#include "serial_testing/ScriptedChannel.h"
#include "testing/stack/ManualReactor.h"
#include "testing/stack/RecordingTrace.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qncomm::testing {

/// The serial control over a line of which every failure can be switched on, on a driven clock.
class SerialControlTest : public ::testing::Test {
  protected:
    SerialControlTest() {
        EXPECT_EQ(mPort.Bindings().Give(3, "/dev/fake"), "");
        mPort.SetPortNumber(3);
        mPort.SetEventSink([this](SerialEvent event) { mEvents.push_back(event); });
    }

    ScriptedChannel& Open() {
        mPort.SetPortOpen(true);
        return *mChannel;
    }
    std::int64_t MsFor(const std::function<void()>& action) {
        const std::int64_t start = mReactor.NowUs();
        action();
        return (mReactor.NowUs() - start) / 1000;
    }
    QNError ErrorOf(const std::function<void()>& action) {
        try {
            action();
        } catch (const QNError& error) {
            return error;
        }
        ADD_FAILURE() << "nothing was raised";
        return {0, "", ""};
    }
    QNError OpenError(IoResult result) {
        mLine.openResult = std::move(result);
        return ErrorOf([this] { mPort.SetPortOpen(true); });
    }

    ManualReactor mReactor;
    ScriptedLine mLine;
    ScriptedChannel* mChannel = nullptr;
    RecordingTrace mTrace;
    PDQComm mPort{mReactor, PortBindings(), &mTrace, [this](const PortAddress&, Reactor& reactor) {
                      auto channel = std::make_unique<ScriptedChannel>(reactor, mLine);
                      mChannel = channel.get();
                      return channel;
                  }};
    std::vector<SerialEvent> mEvents;
};

} // namespace qncomm::testing
