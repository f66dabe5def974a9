#pragma once

#include "common/Clipboard.h"
#include "common/FileDialog.h"
#include "common/InputBox.h"
#include "common/Launcher.h"

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace qncomm::testing {

/// Input boxes answered from a list; a box without an answer is cancelled.
class ScriptedInputs : public InputBoxes {
  public:
    std::string ShowInputBox(const InputBox& box) override;

    std::deque<std::string> mAnswers;
    std::vector<InputBox> mBoxes;
    std::function<void()> mOnBox; ///< called while a box is shown
};

/// A clipboard in memory; nothing stands for a clipboard without text.
class MemoryClipboard : public Clipboard {
  public:
    std::string Text() override { return mText.value_or(""); }
    void SetText(std::string_view sText) override { mText = sText; }

    std::optional<std::string> mText;
};

/// File dialogs answered from a list; a dialog without an answer is cancelled.
class ScriptedFileDialogs : public FileDialogs {
  public:
    std::optional<std::string> ChooseFile(const FileDialog& dialog) override;

    std::function<void()> mOnDialog; ///< called while a dialog is shown
    std::deque<std::string> mAnswers;
    std::vector<FileDialog> mShown;
};

/// Starts nothing, keeps what it was asked and answers as the test says.
class RecordingLauncher : public Launcher {
  public:
    LaunchResult Launch(const LaunchRequest& request) override {
        mRequests.push_back(request);
        return mResult;
    }

    std::vector<LaunchRequest> mRequests;
    LaunchResult mResult;
};

} // namespace qncomm::testing
