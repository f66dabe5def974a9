// The toolbar with any stored record: the first byte chooses a key, the first line after it is the
// record, the others answer what the control asks. A text macro must send exactly its text, and
// whatever happens only errors with a number come out.

#include "ReplyLines.h"
#include "common/Clipboard.h"
#include "common/MemorySettings.h"
#include "common/Pointer.h"
#include "common/QNError.h"
#include "control/QNComm.h"
#include "platform/SystemFiles.h"
#include "testing/core/ControlStandIns.h"
#include "testing/core/ScriptedForms.h"
#include "testing/printer/InstantPrinter.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>

namespace qncomm {
namespace {

/// A line that takes everything and answers nothing.
struct DeafPrinter : InstantPrinter {
    DeafPrinter() : InstantPrinter([](const std::string&) { return std::string(); }) {}
    void Write(std::string_view sBytes) override { sent += sBytes; }
    std::string sent;
};

/// A desk whose boxes and dialogs are answered by the lines of the input.
struct Desk : Desktop, InputBoxes, Clipboard, FileDialogs, Launcher {
    MsgBoxResult ShowMsgBox(const MsgBox& box) override {
        ++boxes;
        return box.buttons == MsgBoxButtons::Ok ? MsgBoxResult::Ok : MsgBoxResult::No;
    }
    void Log(std::string_view /*sLine*/) override {}
    std::string ShowInputBox(const InputBox& /*box*/) override { return Next(); }
    std::string Text() override { return Next(); }
    void SetText(std::string_view /*sText*/) override {}
    std::optional<std::string> ChooseFile(const FileDialog& /*dialog*/) override {
        const std::string name = Next(); // of a file that is not there
        return name.empty() ? std::nullopt : std::optional("/nowhere/" + name);
    }
    LaunchResult Launch(const LaunchRequest& request) override {
        Require(!request.program.empty());
        return {};
    }

    std::string Next() {
        if (answers.empty()) return {};
        std::string answer = std::move(answers.front());
        answers.pop_front();
        return answer;
    }

    std::deque<std::string> answers;
    int boxes = 0;
};

/// A control that is shown on a line which is open.
struct ShownControl {
    ShownControl() {
        host.mUserMode = true;
        window.mControl = &control;
        control.UserControl_ReadProperties(MemoryPropertyBag());
        settings->WriteValue("Settings", "Commport", "1");
        control.SetRegSettings(settings);
        control.UserControl_Show();
        printer.sent.clear();
    }

    DeafPrinter printer;
    Desk desk;
    testing::ScriptedForms forms;
    testing::FakeTerminal terminal;
    testing::FakeHost host;
    testing::FakeWindow window;
    std::shared_ptr<MemorySettings> settings = std::make_shared<MemorySettings>();
    QNComm control{ControlParts{printer, terminal, host, window},
                   ControlServices{printer, desk, desk, desk, desk, desk, forms, SystemFiles()}};
};

/// What a text macro sends, worked out beside the control.
std::optional<std::string> TextOf(const std::string& record, std::deque<std::string> answers) {
    if (!record.starts_with("0;")) return std::nullopt;
    Desk desk;
    desk.answers = std::move(answers);
    MacroPrompts prompts(desk, [] {});
    const auto expanded = prompts.Expand(std::string_view(record).substr(2));
    return expanded ? ReplaceControlNames(*expanded) : std::string();
}

void Press(unsigned char key, const std::string& record, std::deque<std::string> answers) {
    ShownControl shown;
    shown.settings->WriteValue("FunctionKeys", "F1", record);
    shown.control.SetRegSettings(shown.settings);
    shown.printer.sent.clear();
    shown.desk.answers = answers;
    const bool byNumber = key % 2 != 0;
    try {
        if (byNumber)
            shown.control.PressToolbarKey(std::int32_t{key / 2});
        else
            shown.control.PressToolbarKey(key % 4 == 0 ? "F1" : record);
    } catch (const QNError& error) {
        Require(error.Number() != 0);
    }
    if (const auto text = TextOf(record, std::move(answers)); !byNumber && key % 4 == 0 && text)
        Require(shown.printer.sent == *text);
    Require(Pointer::Screen().Shape() == PointerDefault);
    Require(shown.printer.Tag().empty());
}

} // namespace
} // namespace qncomm

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string text(data + 1, data + size);
    const std::vector<std::string> lines = qncomm::SplitKeepEmpty(text, "\n");
    qncomm::Press(data[0], lines.empty() ? std::string() : lines.front(),
                  {lines.empty() ? lines.end() : lines.begin() + 1, lines.end()});
    return 0;
}
