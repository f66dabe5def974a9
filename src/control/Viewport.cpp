// What the control does with its terminal: cursor, clipboard, capture, keys.

#include "Members.h"
#include "common/QNError.h"
#include "common/Text.h"

#include <algorithm>

namespace qncomm {
namespace {

enum Key : std::int16_t { KeyLeft = 37, KeyDown = 40, KeyInsert = 45, KeyDelete = 46 };
enum KeysHeld : std::int16_t { ShiftHeld = 1, CtrlHeld = 2 };
constexpr std::string_view Delete = "\x7F";

/// The lines without the blanks at their ends; empty for a screen of nothing but blanks.
std::string TrimLineEnds(const std::string& screen) {
    if (screen.find_first_not_of(" \r\n") == std::string::npos) return {};
    std::string text;
    text.reserve(screen.size());
    for (std::size_t from = 0; from <= screen.size();) {
        const std::size_t end = std::min(screen.find(CrLf, from), screen.size());
        const std::string_view line(screen.data() + from, end - from);
        const std::size_t last = line.find_last_not_of(' ');
        if (last != std::string_view::npos) text.append(line.substr(0, last + 1));
        if (end < screen.size()) text.append(CrLf);
        from = end + CrLf.size();
    }
    return text;
}

} // namespace

std::int16_t QNComm::CursorColumn() const {
    return mParts.terminal.CursorColumn();
}

std::int16_t QNComm::CursorRow() const {
    return mParts.terminal.CursorRow();
}

void QNComm::SetCursorRow(std::int16_t iRow) {
    mParts.terminal.SetCursorRow(iRow);
    mParts.host.PropertyChanged("CursorRow");
}

void QNComm::Clear() {
    const std::int16_t row = mParts.terminal.CursorRow();
    mParts.terminal.ClearScreen();
    mParts.terminal.SetCursorRow(row);
}

void QNComm::CopyCB() {
    mServices.clipboard.SetText(TrimLineEnds(mParts.terminal.ScreenText()));
}

void QNComm::PasteCB() {
    SendText(mServices.clipboard.Text());
}

void QNComm::SetCaptureToFile(const std::string& sPath) {
    mParts.terminal.CaptureTo(sPath);
}

void QNComm::PDQComm1_KeyDown(std::int16_t& iKeyCode, std::int16_t iShift) {
    Desktop& desktop = mServices.desktop; // the host may end the control while it sends
    try {
        if (iKeyCode >= KeyLeft && iKeyCode <= KeyDown) {
            iKeyCode = 0; // the cursor never moves by an arrow key
        } else if (iKeyCode == KeyDelete) {
            if (mParts.PDQComm1.ReceiveMode() == ReceiveToLink) mParts.PDQComm1.Write(Delete);
        } else if (iKeyCode == KeyInsert) {
            if (iShift == CtrlHeld) CopyCB();
            if (iShift == ShiftHeld) PasteCB();
        }
    } catch (const QNError& error) { // a key press has no caller that an error could reach
        desktop.Log(error.Description());
    }
}

} // namespace qncomm
