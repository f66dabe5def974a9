#pragma once

#include "common/MemorySettings.h"
#include "common/Pointer.h"
#include "common/RuntimeErrors.h"
#include "control/QNComm.h"
#include "platform/SystemFiles.h"
#include "testing/core/ControlStandIns.h"
#include "testing/core/DeskTools.h"
#include "testing/core/ExpectRaised.h"
#include "testing/core/ManualLoop.h"
#include "testing/core/RecordingDesktop.h"
#include "testing/core/ScratchFolder.h"
#include "testing/core/ScriptedForms.h"
#include "testing/core/ScriptedSerial.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace qncomm::testing {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A control in a container, on a line at whose end a printer answers every command line: with what
/// mReplies says for it, and as a printer that is being searched for and asked for its model.
class ControlFixture : public ::testing::Test {
  protected:
    ControlFixture() {
        mSerial.mValidPorts = {1};
        mSerial.OnSend([this](std::string& sent) { Listen(sent); });
        Create();
    }
    ~ControlFixture() override { Pointer::Screen().Set(PointerDefault); }

    /// Makes the control anew, with what it is to keep.
    void Create(std::shared_ptr<void> keep = {}) {
        mControl = std::make_unique<QNComm>(
            ControlParts{mSerial, mTerminal, mHost, mWindow, std::move(keep)},
            ControlServices{mLoop, mDesktop, mInputs, mClipboard, mFiles, mLauncher, mForms,
                            SystemFiles()});
        mWindow.mControl = mControl.get();
        mStatus = mControl->StatusEvent.Connect(
            [this](std::string& text, std::int16_t progress, bool& cancel) {
                mMessages.push_back(text);
                mProgress.push_back(progress);
                if (mOnStatus) mOnStatus(text, cancel);
            });
        mPortState = mControl->PortStateEvent.Connect([this](bool& busy) {
            mPortStates.push_back(busy);
            if (mOnPortState) mOnPortState(busy);
        });
    }

    /// Run time, with settings.
    QNComm& Run(const MemoryPropertyBag& bag = {}) {
        mHost.mUserMode = true;
        mControl->UserControl_ReadProperties(bag);
        mControl->SetRegSettings(mSettings);
        mSerial.mLog.clear();
        mHost.mChanged.clear();
        return *mControl;
    }

    /// Run time and shown: the port is open for the terminal.
    QNComm& Show() {
        Run().UserControl_Show();
        return *mControl;
    }

    void SetMacro(const std::string& key, const std::string& value) {
        mSettings->WriteValue("FunctionKeys", key, value);
    }

    /// The command lines beyond searching, greeting and asking for the model; taken.
    Strings TakeCommands() { return std::exchange(mCommands, {}); }
    /// What was sent, taken.
    std::string TakeSent() { return std::exchange(mSerial.mSent, {}); }

    Strings TextsOfBoxes() const {
        Strings texts;
        for (const MsgBox& box : mDesktop.mBoxes)
            texts.push_back(box.text);
        return texts;
    }

    ManualLoop mLoop;
    RecordingDesktop mDesktop;
    ScriptedInputs mInputs;
    MemoryClipboard mClipboard;
    ScriptedFileDialogs mFiles;
    RecordingLauncher mLauncher;
    ScriptedForms mForms;
    ScriptedSerial mSerial{mLoop};
    FakeTerminal mTerminal;
    FakeHost mHost;
    FakeWindow mWindow;
    std::shared_ptr<MemorySettings> mSettings = std::make_shared<MemorySettings>();
    ScratchFolder mFolder;
    std::unique_ptr<QNComm> mControl;
    Subscription mStatus;
    Subscription mPortState;
    Strings mMessages;
    std::vector<std::int16_t> mProgress;
    std::vector<bool> mPortStates;
    std::function<void(std::string&, bool&)> mOnStatus;
    std::function<void(bool)> mOnPortState;

    std::string mModel = "R7G";
    std::map<std::string, Strings> mReplies; ///< what is shown between echo and "Ok"
    bool mSilent = false;                    ///< nobody answers

  private:
    void Listen(std::string& sent) {
        for (const char c : std::exchange(sent, {})) {
            if (c == '\r' || c == '\n') {
                if (!mLine.empty()) Answer(std::exchange(mLine, {}));
            } else if (c != '\x11') {
                mLine += c;
            }
        }
    }

    void Answer(const std::string& line) {
        if (mSilent) return;
        std::string reply = line + "\r\n";
        for (const std::string& shown : RepliesTo(line))
            reply += shown + "\r\n";
        mSerial.Arrive(reply + "Ok\r\n", 5);
    }

    Strings RepliesTo(const std::string& line) {
        if (line.find("HELLO") != std::string::npos) return {"HELLO"};
        if (line.find("#68") != std::string::npos)
            return line.find("UART1") != std::string::npos ? Strings{"=1"} : Strings{};
        if (line.starts_with("PRINT SYSVAR")) return {"-1", "2"};
        if (line.starts_with("PRINT VERSION")) return {"Quorin v8.10", mModel};
        if (line.find("SETUP WRITE") != std::string::npos && !mReplies.contains(line))
            return {"UART1,BAUDRATE,9600", "UART1,CHAR LENGTH,8", "UART1,PARITY,NONE",
                    "UART1,STOPBITS,2"};
        mCommands.push_back(line);
        const auto found = mReplies.find(line);
        return found != mReplies.end() ? found->second : Strings{};
    }

    std::string mLine;
    Strings mCommands;
};

} // namespace qncomm::testing
