#pragma once

#include "common/MemorySettings.h"
#include "common/Pointer.h"
#include "common/QNError.h"
#include "common/modErrorHandling.h"
#include "platform/SystemFiles.h"
#include "printer/clsQuorin.h"
#include "testing/core/ExpectRaised.h"
#include "testing/core/ManualLoop.h"
#include "testing/core/RecordingDesktop.h"
#include "testing/core/ScriptedSerial.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm::testing {

using Lines = std::vector<std::string>;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A reboot window that nobody sees, and a settings dialog that is always cancelled.
class NoDialogs : public LinkDialogs {
  public:
    std::int16_t ShowCommSettings(clsDataLink& /*link*/) override {
        ++mSettingsShown;
        return 2;
    }
    std::unique_ptr<ShownWindow> ShowWaitForReboot() override { return nullptr; }

    int mSettingsShown = 0;
};

/// What dispatches anything once the port was given back ends what dispatches: nothing is waited
/// for any more, and only the work on what came can hear it.
class CancelOnceThePortIsGivenBack : private ManualLoop::Source {
  public:
    CancelOnceThePortIsGivenBack(ManualLoop& loop, const clsDataLink& link)
        : mLoop(loop), mLink(link) {
        mLoop.AddSource(*this);
    }
    ~CancelOnceThePortIsGivenBack() override { mLoop.RemoveSource(*this); }
    CancelOnceThePortIsGivenBack(const CancelOnceThePortIsGivenBack&) = delete;
    CancelOnceThePortIsGivenBack& operator=(const CancelOnceThePortIsGivenBack&) = delete;

  private:
    std::optional<std::int64_t> NextDue() const override {
        if (mLink.UseCount() > 0) return std::nullopt;
        return mLoop.NowMs();
    }
    void Dispatch() override { throw OperationCancelled(); }

    ManualLoop& mLoop;
    const clsDataLink& mLink;
};

/// The command layer over a link on a scripted line and a driven clock. The printer is found; its
/// model is not known until it is asked. No test may leave the port claimed.
class PrinterFixture : public ::testing::Test {
  protected:
    PrinterFixture() {
        mSerial.mValidPorts = {1};
        mLink.SetSerialPort(&mSerial);
        mLink.SetRegSettings(mSettings);
        mLink.SetImmediateMode(true);
        mStatus = mQuorin.StatusEvent.Connect(
            [this](std::string& text, std::int16_t& progress, bool& cancel) {
                mMessages.push_back(text + " " + std::to_string(progress));
                if (mOnStatus) cancel = mOnStatus(text, progress);
            });
    }
    ~PrinterFixture() override {
        EXPECT_EQ(mLink.UseCount(), 0) << "the port stays claimed";
        Pointer::Screen().Set(PointerDefault);
    }

    /// The exchange in which the printer tells its model.
    void ScriptIdentity(const std::string& model, const std::string& version = "Quorin v8.10") {
        mSerial.Handshake().Exchange("PRINT VERSION$(0):PRINT VERSION$(1)", {version, model});
    }

    /// The model becomes known, as it is after any operation that asked for it.
    void Know(const std::string& model, const std::string& version = "Quorin v8.10") {
        ScriptIdentity(model, version);
        EXPECT_EQ(mQuorin.PrinterType(), model);
    }

    /// Another printer answers from here on.
    void Reconnect(const std::string& model) {
        mLink.SetImmediateMode(false);
        mLink.SetImmediateMode(true);
        Know(model);
    }

    /// A claim of its own, one line and its reply.
    void Script(const std::string& line, const Lines& reply = {}) {
        mSerial.Handshake().Exchange(line, reply);
    }

    /// From here on every claim is refused, until GrantPort.
    void RefusePort() { mSerial.SetTag("EXCLUSIVE_USE"); }
    void GrantPort() { mSerial.SetTag(""); }

    clsPrinterDevice& Device(const std::string& name) {
        return *mQuorin.PrinterDevices()->Item(name);
    }
    Lines DirtyDevices() { return NamesOf(&clsPrinterDevice::Dirty); }
    Lines ValidDevices() { return NamesOf(&clsPrinterDevice::Valid); }

    /// Builds the table for a model and marks every device clean.
    void KnowCleanDevices(const std::string& model) {
        Know(model);
        Script("FILES\"rom:\"", {"FILES ON rom:", "1 BYTES FREE  2 BYTES USED"});
        std::string rom = "rom:";
        mQuorin.Files(rom);
        for (const auto& device : *mQuorin.PrinterDevices())
            device->Dirty = false;
    }

    /// The names and sizes of files, "NAME 12".
    static Lines Listed(const PrinterFiles& files) {
        Lines lines;
        for (const auto& file : files)
            lines.push_back(file->Name + " " + std::to_string(file->Size));
        return lines;
    }

    ManualLoop mLoop;
    RecordingDesktop mDesktop;
    NoDialogs mDialogs;
    std::shared_ptr<MemorySettings> mSettings = std::make_shared<MemorySettings>();
    ScriptedSerial mSerial{mLoop};
    clsDataLink mLink{LinkHost{mLoop, mDesktop, mDialogs, SystemFiles()}};
    clsQuorin mQuorin{mLink, mDesktop, SystemFiles()};
    Subscription mStatus;
    Lines mMessages;
    std::function<bool(const std::string&, std::int16_t)> mOnStatus; ///< True cancels

  private:
    Lines NamesOf(bool clsPrinterDevice::*flag) {
        Lines names;
        for (const auto& device : *mQuorin.PrinterDevices())
            if ((*device).*flag) names.push_back(device->Name);
        return names;
    }
};

} // namespace qncomm::testing
