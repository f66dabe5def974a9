#pragma once

#include "Choices.h"
#include "assembly/ControlAssembly.h"
#include "automation/SurfaceMember.h"
#include "common/MemorySettings.h"
#include "testing/core/ControlStandIns.h"
#include "testing/core/ScratchFolder.h"
#include "testing/stack/ManualReactor.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qncomm::fuzz {

/// What a host does to its control, chosen by the fuzzer: which member it calls with which
/// arguments, and what it does within the control's events, boxes, dialogs and timers, which are
/// its moments. A moment may cancel, raise, call a member, take the control down or destroy it. The
/// line is tampered with as well.
///
/// Paths are of a folder of the host's own, whatever is chosen.
class HostileHost : Desktop,
                    InputBoxes,
                    Clipboard,
                    FileDialogs,
                    Launcher,
                    FormWindows,
                    TerminalScreen {
  public:
    /// steps: what is done one after another; moments: what is done within it; line: what happens
    /// on the line.
    HostileHost(Choices steps, Choices moments, Choices line);
    ~HostileHost();
    HostileHost(const HostileHost&) = delete;
    HostileHost& operator=(const HostileHost&) = delete;

    /// Goes on until the choices are used up, and ends the program when a promise of the control is
    /// broken.
    void Run();

  private:
    // -- What the control asks; each is a moment
    MsgBoxResult ShowMsgBox(const MsgBox& box) override;
    void Log(std::string_view /*sLine*/) override {}
    std::string ShowInputBox(const InputBox& box) override;
    std::string Text() override { return Line(); }
    void SetText(std::string_view /*sText*/) override {}
    std::optional<std::string> ChooseFile(const FileDialog& dialog) override;
    LaunchResult Launch(const LaunchRequest& request) override;
    void ShowModal(FormModel& form) override;
    std::unique_ptr<ShownWindow> Show(FormModel& form) override;
    void SetFocus() override {}
    void Move(const Rectangle& /*place*/) override {}
    void Changed() override {}
    void CaptureFailed(const std::string& /*sPath*/, const std::string& /*sReason*/) override {
        Moment();
    }

    void Assemble();
    void Connect();
    void Step();
    void CallAny();
    void ActOnSurface();
    void Moment(bool* cancel = nullptr);
    void Act(std::uint8_t choice, bool* cancel);
    void ExpectAtRest();

    Variant Argument(const MemberParameter& parameter);
    std::string Line();
    std::string Path();

    Choices mSteps;
    Choices mMoments;
    Choices mLineChoices;
    int mDepth = 0; ///< members that are being called
    bool mActing = false;
    testing::ScratchFolder mFolder;
    testing::ManualReactor mReactor;
    testing::FakeHost mHost;
    testing::FakeWindow mWindow;
    std::shared_ptr<MemorySettings> mSettings = std::make_shared<MemorySettings>();
    std::vector<Subscription> mEvents;
    std::unique_ptr<RunningTimer> mTimer;
    std::unique_ptr<ControlAssembly> mAssembly;
};

} // namespace qncomm::fuzz
