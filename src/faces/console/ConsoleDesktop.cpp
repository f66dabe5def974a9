#include "console/ConsoleDesktop.h"

#include "common/Text.h"
#include "console/Charset.h"

#include <ostream>
#include <utility>

namespace qncomm {
namespace {

/// Title and text as lines: the first behind the title, the others set in below it.
std::string LinesOf(const MsgBox& box) {
    std::string text = (box.title.empty() ? std::string(ProductName) : box.title) + ":";
    const char* before = " ";
    for (const std::string& line : SplitNonEmpty(ReplaceAll(box.text, "\r", ""), "\n")) {
        const std::string shown = Trim(WithoutControls(DisplayText(line)));
        text.append(before).append(shown);
        before = "\n  ";
    }
    return text;
}

} // namespace

ConsoleDesktop::ConsoleDesktop(std::ostream& err, StatusLine& status, LineReader& input,
                               GivenAnswer answer, LogSink log)
    : mErr(err), mStatus(status), mInput(input), mAnswer(answer), mLog(std::move(log)) {}

MsgBoxResult ConsoleDesktop::ShowMsgBox(const MsgBox& box) {
    mStatus.Clear();
    mErr << LinesOf(box);
    if (box.buttons == MsgBoxButtons::Ok) {
        mErr << std::endl;
        ++mTold;
        return MsgBoxResult::Ok;
    }
    const bool yes = Agrees();
    if (box.buttons == MsgBoxButtons::YesNo) return yes ? MsgBoxResult::Yes : MsgBoxResult::No;
    return yes ? MsgBoxResult::Ok : MsgBoxResult::Cancel;
}

bool ConsoleDesktop::Agrees() {
    mErr << " [y/N] " << std::flush;
    if (mAnswer != GivenAnswer::None || !mInput.IsTerminal()) {
        const bool yes = mAnswer == GivenAnswer::Yes;
        mErr << (yes ? "yes" : "no") << std::endl;
        return yes;
    }
    const std::string line = LowerCase(Trim(ReadAnswer(mInput, mErr).value_or("")));
    return line == "y" || line == "yes";
}

void ConsoleDesktop::Log(std::string_view sLine) {
    if (mLog) mLog(sLine);
}

} // namespace qncomm
