#pragma once

#include "common/MemorySettings.h"
#include "common/Pointer.h"
#include "common/QNError.h"
#include "link/clsDataLink.h"
#include "platform/SystemFiles.h"
#include "testing/core/ExpectRaised.h"
#include "testing/core/ManualLoop.h"
#include "testing/core/RecordingDesktop.h"
#include "testing/core/ScriptedSerial.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace qncomm::testing {

using Lines = std::vector<std::string>;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Dialogs that do what a test says.
class FakeDialogs : public LinkDialogs {
  public:
    std::int16_t ShowCommSettings(clsDataLink& link) override {
        ++mSettingsShown;
        return mOnSettings ? mOnSettings(link) : std::int16_t{2};
    }
    std::unique_ptr<ShownWindow> ShowWaitForReboot() override {
        struct Window : ShownWindow {
            explicit Window(int& shown) : mShown(shown) { ++mShown; }
            ~Window() override { --mShown; }
            int& mShown;
        };
        ++mRebootsShown;
        return std::make_unique<Window>(mRebootWindows);
    }

    std::function<std::int16_t(clsDataLink&)> mOnSettings;
    int mSettingsShown = 0;
    int mRebootsShown = 0;
    int mRebootWindows = 0;
};

/// A link on a scripted line and a driven clock, with settings loaded from an empty store.
class LinkFixture : public ::testing::Test {
  protected:
    explicit LinkFixture(LinkOptions options = {})
        : mLink(LinkHost{mLoop, mDesktop, mDialogs, SystemFiles(), 1, std::move(options)}) {
        mSerial.mValidPorts = {1};
        mLink.SetSerialPort(&mSerial);
        mLink.SetRegSettings(mSettings);
        mSerial.mLog.clear();
        mStatus = mLink.StatusEvent.Connect(
            [this](std::string& text, std::int16_t& progress, bool& cancel) {
                mMessages.push_back(text + " " + std::to_string(progress));
                if (mOnStatus) mOnStatus(text, cancel);
            });
        mPortState = mLink.PortStateEvent.Connect([this](bool& open) {
            mPortStates.push_back(open);
            if (mOnPortState) mOnPortState(open);
        });
    }
    ~LinkFixture() override { Pointer::Screen().Set(PointerDefault); }

    /// A claim whose handshake is answered, the printer being known.
    PortClaim Claim() {
        mLink.SetImmediateMode(true);
        mSerial.Handshake();
        return mLink.AcquirePort();
    }

    /// What the serial control's log holds, taken.
    Lines TakeLog() { return std::exchange(mSerial.mLog, {}); }

    ManualLoop mLoop;
    RecordingDesktop mDesktop;
    FakeDialogs mDialogs;
    std::shared_ptr<MemorySettings> mSettings = std::make_shared<MemorySettings>();
    ScriptedSerial mSerial{mLoop};
    clsDataLink mLink;
    Subscription mStatus;
    Subscription mPortState;
    Lines mMessages;
    std::vector<bool> mPortStates;
    std::function<void(const std::string&, bool&)> mOnStatus;
    std::function<void(bool)> mOnPortState;
};

} // namespace qncomm::testing
