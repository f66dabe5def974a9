#include "assembly/TerminalViewport.h"

#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "serial/PDQComm.h"
#include "terminal/Terminal.h"

namespace qncomm {
namespace {

using terminal::CaptureStatus;

/// The runtime's number for a file that cannot be captured to.
std::int32_t NumberOf(CaptureStatus status) {
    switch (status) {
    case CaptureStatus::Missing:
        return RtPathNotFound;
    case CaptureStatus::Denied:
        return RtPermissionDenied;
    default:
        return RtPathFileAccess;
    }
}

} // namespace

TerminalViewport::TerminalViewport(Terminal& grid, PDQComm& serial, TerminalScreen& screen)
    : mGrid(grid), mSerial(serial), mScreen(&screen) {
    mGrid.Appearance().displayState = DisplayActive;
    mGrid.SetCaptureFailureHandler([this](const terminal::CaptureResult& result) {
        if (mScreen != nullptr) mScreen->CaptureFailed(mCapturePath, result.text);
    });
    mSerial.SetTerminalSink([this](std::string_view text) { Show(text); });
}

TerminalViewport::~TerminalViewport() {
    mSerial.SetTerminalSink({});
    mGrid.SetCaptureFailureHandler({});
}

void TerminalViewport::Show(std::string_view sText) {
    mGrid.Write(sText);
    TellChange();
    Received.Raise(sText);
}

void TerminalViewport::TellChange() {
    if (mScreen != nullptr) mScreen->Changed();
}

std::size_t TerminalViewport::Type(std::string_view sKeys) {
    return mSerial.ReceiveMode() == ReceiveToTerminal ? mSerial.TypeKeys(sKeys) : 0;
}

// -- Appearance

std::int32_t TerminalViewport::BackColor() const {
    return mGrid.Appearance().backColor;
}

void TerminalViewport::SetBackColor(std::int32_t lColor) {
    mGrid.Appearance().backColor = lColor;
    TellChange();
}

std::int32_t TerminalViewport::ForeColor() const {
    return mGrid.Appearance().foreColor;
}

void TerminalViewport::SetForeColor(std::int32_t lColor) {
    mGrid.Appearance().foreColor = lColor;
    TellChange();
}

TerminalFont TerminalViewport::Font() const {
    return {mGrid.Appearance().fontName, mGrid.Appearance().fontSize};
}

void TerminalViewport::SetFont(const TerminalFont& font) {
    mGrid.Appearance().fontName = font.name;
    mGrid.Appearance().fontSize = font.size;
    TellChange();
}

std::int16_t TerminalViewport::DisplayState() const {
    return mGrid.Appearance().displayState;
}

void TerminalViewport::SetDisplayState(std::int16_t iState) {
    mGrid.Appearance().displayState = iState;
    TellChange();
}

void TerminalViewport::SetFocus() {
    if (mScreen != nullptr) mScreen->SetFocus();
}

void TerminalViewport::Move(const Rectangle& place) {
    if (mScreen != nullptr) mScreen->Move(place);
}

// -- The grid

std::int16_t TerminalViewport::Rows() const {
    return mGrid.Rows();
}

void TerminalViewport::SetRows(std::int16_t iRows) {
    Resize(iRows, mGrid.Columns());
}

std::int16_t TerminalViewport::Columns() const {
    return mGrid.Columns();
}

void TerminalViewport::SetColumns(std::int16_t iColumns) {
    Resize(mGrid.Rows(), iColumns);
}

void TerminalViewport::Resize(std::int16_t rows, std::int16_t columns) {
    if (!mGrid.Resize(rows, columns)) RaiseRuntimeError(RtInvalidCall, "PDQComm");
    TellChange();
}

std::int16_t TerminalViewport::CursorRow() const {
    return mGrid.CursorRow();
}

void TerminalViewport::SetCursorRow(std::int16_t iRow) {
    mGrid.SetCursorRow(iRow);
    TellChange();
}

std::int16_t TerminalViewport::CursorColumn() const {
    return mGrid.CursorColumn();
}

std::string TerminalViewport::ScreenText() const {
    return mGrid.ScreenText();
}

void TerminalViewport::ClearScreen() {
    mGrid.Clear();
    TellChange();
}

void TerminalViewport::CaptureTo(const std::string& sPath) {
    const terminal::CaptureResult result = mGrid.StartCapture(sPath);
    if (!result.Ok())
        throw QNError(NumberOf(result.status), "PDQComm", sPath + ": " + result.text + ".");
    mCapturePath = sPath;
}

} // namespace qncomm
