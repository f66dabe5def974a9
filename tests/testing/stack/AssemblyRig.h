#pragma once

#include "assembly/AllChannelKinds.h"
#include "assembly/ControlAssembly.h"
#include "common/MemorySettings.h"
#include "common/Pointer.h"
#include "common/Text.h"
#include "platform/SystemFiles.h"
#include "testing/core/ControlStandIns.h"
#include "testing/core/DeskTools.h"
#include "testing/core/Mood.h"
#include "testing/core/RecordingDesktop.h"
#include "testing/core/ScratchFolder.h"
#include "testing/core/ScriptedForms.h"
#include "testing/stack/ManualReactor.h"
#include "testing/stack/RecordingTrace.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qncomm::testing {

/// A screen that records what it is told.
struct RecordingScreen : TerminalScreen {
    void SetFocus() override { ++mFocused; }
    void Move(const Rectangle& place) override { mPlace = place; }
    void Changed() override { ++mChanges; }
    void CaptureFailed(const std::string& sPath, const std::string& sReason) override {
        mFailures.push_back(sPath + ": " + sReason);
    }

    int mFocused = 0;
    int mChanges = 0;
    Rectangle mPlace;
    Strings mFailures;
};

/// A control on the real serial control with a virtual printer at port 1, on a driven clock.
class AssemblyRig {
  public:
    AssemblyRig() { Assemble("sim:R7G"); }
    ~AssemblyRig() {
        mAssembly.reset();
        Pointer::Screen().Set(PointerDefault);
    }
    AssemblyRig(const AssemblyRig&) = delete;
    AssemblyRig& operator=(const AssemblyRig&) = delete;

    /// A new control in the place of the one that was.
    void Assemble(const std::string& address) { AssembleOn({address}); }

    /// A new control with a printer at each port from 1 on; port 1 is the one it uses.
    void AssembleOn(const Strings& addresses) {
        ControlAssembly::Options options;
        options.bindings = PortBindings(AllChannelKinds());
        options.trace = &mTrace;
        std::int16_t port = 0;
        for (const std::string& address : addresses)
            EXPECT_EQ(options.bindings.Give(++port, InMood(address)), "");
        mAssembly.reset();
        mAssembly = std::make_unique<ControlAssembly>(
            mReactor,
            ControlServices{mReactor, mDesktop, mInputs, mClipboard, mFiles, mLauncher, mForms,
                            SystemFiles()},
            ControlView{mHost, mWindow, mScreen}, std::move(options));
        mHost.mUserMode = true;
        mWindow.mControl = &Control();
        mSettings->WriteValue("Settings", "Commport", "1");
        Control().UserControl_ReadProperties(MemoryPropertyBag{});
        Control().SetRegSettings(mSettings);
    }

    QNComm& Control() { return mAssembly->Control(); }

    /// Shows the control, so that what is typed goes to the printer.
    QNComm& Show() {
        Control().UserControl_Show();
        return Control();
    }

    /// What the user types, and the printer's answer.
    std::string Type(const std::string& keys) {
        Control().Clear();
        Control().SetCursorRow(1);
        EXPECT_EQ(mAssembly->Viewport().Type(keys), keys.size());
        mReactor.Pass(1000);
        return Screen();
    }

    /// What has gone to the printer since the last call.
    std::string TakeSent() { return std::exchange(mTrace.mSent, {}); }

    /// The command lines that have gone to the printer since the last call, without those that
    /// every claim of the port begins with.
    Strings TakeCommands() {
        Strings commands = SplitKeepEmpty(TakeSent(), CrLf);
        std::erase_if(commands, [](const std::string& line) {
            return line.empty() || line.starts_with("PRINT SYSVAR(18)");
        });
        return commands;
    }

    static Strings NamesOf(const std::shared_ptr<PrinterFiles>& files) {
        Strings names;
        for (const auto& file : *files)
            names.push_back(file->Name);
        return names;
    }
    /// The files of a device as the printer has them now.
    Strings FilesOn(const std::string& device, bool system = false) {
        return NamesOf(Control().Files(device, true, system));
    }

    /// Puts a program of these lines into the printer's memory and on its work device.
    std::shared_ptr<ModuleErrors> Program(const std::string& name, const std::string& lines) {
        ModuleUploadArgs args{.sSourcePath = {}, .sTargetPath = name, .sModuleText = lines};
        return Control().ModuleUpload(args);
    }
    /// The program in the printer's memory.
    std::string Listing() {
        const std::string path = mFolder.File("listing.txt");
        Control().UploadQNProgram(path);
        return ContentOf(path);
    }

    /// The screen without its blanks.
    std::string Screen() {
        Control().CopyCB();
        std::string text = mClipboard.Text();
        return text.erase(text.find_last_not_of("\r\n") + 1);
    }

    ManualReactor mReactor;
    RecordingDesktop mDesktop;
    ScriptedInputs mInputs;
    MemoryClipboard mClipboard;
    ScriptedFileDialogs mFiles;
    RecordingLauncher mLauncher;
    ScriptedForms mForms;
    FakeHost mHost;
    FakeWindow mWindow;
    RecordingScreen mScreen;
    RecordingTrace mTrace;
    ScratchFolder mFolder;
    std::shared_ptr<MemorySettings> mSettings = std::make_shared<MemorySettings>();
    std::unique_ptr<ControlAssembly> mAssembly;
};

} // namespace qncomm::testing
