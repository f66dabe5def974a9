#include "terminal/Terminal.h"

#include "Capture.h"
#include "Screen.h"

#include <algorithm>

namespace qncomm {
namespace {

std::uint16_t WithinOneAnd(std::int16_t most, std::int16_t wanted) {
    return static_cast<std::uint16_t>(std::clamp<std::int16_t>(wanted, 1, most));
}

} // namespace

struct Terminal::Parts {
    explicit Parts(Options options)
        : screen(WithinOneAnd(MostRows, options.rows), WithinOneAnd(MostColumns, options.columns),
                 std::max<std::size_t>(1, options.scrollbackLines)),
          capture(std::move(options.captureOpener)) {}

    terminal::ControlParser parser;
    terminal::Screen screen;
    terminal::Capture capture;
};

Terminal::Terminal() : Terminal(Options()) {}

Terminal::Terminal(Options options) : mParts(std::make_unique<Parts>(std::move(options))) {}

Terminal::~Terminal() = default;

void Terminal::Write(std::string_view sBytes) {
    mParts->parser.Feed(sBytes, mParts->screen);
    const std::optional<terminal::CaptureResult> failure = mParts->capture.Write(sBytes);
    if (!failure) return;
    const CaptureFailureHandler handler = mCaptureFailed; // it may set another one
    if (handler) handler(*failure);
}

std::int16_t Terminal::Rows() const {
    return static_cast<std::int16_t>(mParts->screen.Cells().Rows());
}

std::int16_t Terminal::Columns() const {
    return static_cast<std::int16_t>(mParts->screen.Cells().Columns());
}

bool Terminal::Resize(std::int16_t iRows, std::int16_t iColumns) {
    if (iRows < 1 || iRows > MostRows || iColumns < 1 || iColumns > MostColumns) return false;
    if (iRows != Rows() || iColumns != Columns())
        mParts->screen.Resize(static_cast<std::uint16_t>(iRows),
                              static_cast<std::uint16_t>(iColumns));
    return true;
}

std::int16_t Terminal::CursorRow() const {
    return static_cast<std::int16_t>(mParts->screen.Row() + 1);
}

void Terminal::SetCursorRow(std::int16_t iRow) {
    mParts->screen.MoveTo(iRow - 1, mParts->screen.Column());
}

std::int16_t Terminal::CursorColumn() const {
    return static_cast<std::int16_t>(mParts->screen.Column() + 1);
}

bool Terminal::CursorVisible() const {
    return mParts->screen.CursorVisible();
}

std::string Terminal::ScreenText() const {
    return mParts->screen.Text();
}

void Terminal::Clear() {
    const std::int16_t row = CursorRow();
    mParts->parser.Reset();
    mParts->screen.Reset();
    SetCursorRow(row);
}

terminal::TerminalLine Terminal::Row(std::int16_t iRow) const {
    if (iRow < 1 || iRow > Rows()) return {};
    return ToLine(mParts->screen.Cells().View(static_cast<std::uint16_t>(iRow - 1)));
}

std::uint64_t Terminal::ScrollbackBegin() const {
    return mParts->screen.Lines().Begin();
}

std::uint64_t Terminal::ScrollbackEnd() const {
    return mParts->screen.Lines().End();
}

terminal::TerminalLine Terminal::ScrollbackLine(std::uint64_t number) const {
    return mParts->screen.Lines().Line(number);
}

void Terminal::ClearScrollback() {
    mParts->screen.Lines().Clear();
}

bool Terminal::HasDamage() const {
    return mParts->screen.Cells().HasDamage();
}

terminal::Damage Terminal::TakeDamage() {
    return mParts->screen.Cells().TakeDamage();
}

bool Terminal::TakeBell() {
    return mParts->screen.TakeBell();
}

terminal::CaptureResult Terminal::StartCapture(const std::string& sPath) {
    return mParts->capture.Start(sPath);
}

void Terminal::StopCapture() {
    mParts->capture.Stop();
}

bool Terminal::IsCapturing() const {
    return mParts->capture.IsOn();
}

std::string Terminal::CapturePath() const {
    return mParts->capture.Path();
}

void Terminal::SetCaptureFailureHandler(CaptureFailureHandler handler) {
    mCaptureFailed = std::move(handler);
}

std::optional<terminal::CaptureResult> Terminal::CaptureFailure() const {
    return mParts->capture.Failure();
}

} // namespace qncomm
