#pragma once

#include "assembly/AllChannelKinds.h"
#include "common/MemorySettings.h"
#include "link/clsDataLink.h"
#include "platform/SystemFiles.h"
#include "serial/PDQComm.h"
#include "testing/core/Mood.h"
#include "testing/core/RecordingDesktop.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qncomm::testing {

/// A link on the real serial control on one address, with what a host keeps of its events.
class Stack {
  public:
    /// settings: what the store holds before the link loads it.
    Stack(Reactor& reactor, const std::string& address,
          const std::vector<SettingValue>& settings = {}, LinkOptions options = {})
        : mSerial(reactor, Bound(address)),
          mLink(LinkHost{reactor, mDesktop, mDialogs, SystemFiles(), 1, std::move(options)}) {
        mSettings->WriteValue("Settings", "Commport", "1");
        mSettings->WriteValues(settings);
        mLink.SetSerialPort(&mSerial);
        mLink.SetRegSettings(mSettings);
        mSerial.SetTerminalSink([this](std::string_view text) { mTerminalText += text; });
        mStatus = mLink.StatusEvent.Connect([this](std::string& text, std::int16_t&, bool& cancel) {
            mMessages.push_back(text);
            cancel = mCancel;
        });
        mPortState =
            mLink.PortStateEvent.Connect([this](bool& open) { mPortStates.push_back(open); });
    }

    /// One command under a claim of its own; empty when the claim is refused.
    std::vector<std::string> Ask(const std::string& line, std::int32_t timeout = 1000) {
        std::vector<std::string> lines;
        PortClaim claim = mLink.AcquirePort();
        if (!claim) return lines;
        mLink.OutputText(line + "\r\n");
        mLink.InputText(lines, false, timeout);
        claim.Release();
        return lines;
    }

    RecordingDesktop mDesktop;
    std::shared_ptr<MemorySettings> mSettings = std::make_shared<MemorySettings>();
    PDQComm mSerial;

  private:
    struct NoDialogs : LinkDialogs {
        std::int16_t ShowCommSettings(clsDataLink&) override { return 2; }
        std::unique_ptr<ShownWindow> ShowWaitForReboot() override { return nullptr; }
    };

    static PortBindings Bound(const std::string& address) {
        PortBindings bindings(AllChannelKinds());
        EXPECT_EQ(bindings.Give(1, InMood(address)), "");
        return bindings;
    }

    NoDialogs mDialogs;

  public:
    clsDataLink mLink;
    std::vector<std::string> mMessages;
    std::vector<bool> mPortStates;
    std::string mTerminalText;
    bool mCancel = false;

  private:
    Subscription mStatus;
    Subscription mPortState;
};

} // namespace qncomm::testing
