#pragma once

#include "common/Event.h"
#include "control/ViewportTerminal.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace qncomm {

class PDQComm;
class Terminal;

/// Where a face shows a terminal. Its members are called from within the loop's turns and from
/// within the control's members, and paint nothing themselves.
class TerminalScreen {
  public:
    virtual ~TerminalScreen() = default;

    /// The terminal is to have the keyboard.
    virtual void SetFocus() = 0;
    /// The terminal's new place in the control, in the control's scale units.
    virtual void Move(const Rectangle& place) = 0;
    /// Something that is shown differs now: the screen, the colours, the font, the display state.
    virtual void Changed() = 0;
    /// The capture has ended because its file takes no more; sReason is a text to show, without a
    /// final period. Told once.
    virtual void CaptureFailed(const std::string& sPath, const std::string& sReason) = 0;
};

/// The grid of characters as the control's viewport: what the link shows goes into the grid, what
/// is typed goes to the line. It is the serial control's terminal while it lives.
class TerminalViewport final : public ViewportTerminal {
  public:
    /// Grid and serial control must outlive the viewport; the screen until TakeScreenAway.
    TerminalViewport(Terminal& grid, PDQComm& serial, TerminalScreen& screen);
    ~TerminalViewport() override;
    TerminalViewport(const TerminalViewport&) = delete;
    TerminalViewport& operator=(const TerminalViewport&) = delete;

    /// Calls the screen no more; it may be destroyed from now on.
    void TakeScreenAway() { mScreen = nullptr; }

    /// Text has come to the terminal and stands in the grid: bytes as the line brought them, valid
    /// for the call alone. An error that a handler raises goes to the loop's turn.
    Event<std::string_view> Received;

    /// Shows text in the grid as if it had come from the line: bytes of the printer's character
    /// set.
    void Show(std::string_view sText);

    /// Typed keys, as bytes for the line. Returns how many it took: none while the
    /// port is closed or an operation has it, fewer than all when the line is behind.
    std::size_t Type(std::string_view sKeys);

    std::int32_t BackColor() const override;
    void SetBackColor(std::int32_t lColor) override;
    std::int32_t ForeColor() const override;
    void SetForeColor(std::int32_t lColor) override;
    TerminalFont Font() const override;
    void SetFont(const TerminalFont& font) override;
    std::int16_t Rows() const override;
    void SetRows(std::int16_t iRows) override;
    std::int16_t Columns() const override;
    void SetColumns(std::int16_t iColumns) override;
    std::int16_t CursorRow() const override;
    void SetCursorRow(std::int16_t iRow) override;
    std::int16_t CursorColumn() const override;
    std::string ScreenText() const override;
    void ClearScreen() override;
    void CaptureTo(const std::string& sPath) override;
    std::int16_t DisplayState() const override;
    void SetDisplayState(std::int16_t iState) override;
    void SetFocus() override;
    void Move(const Rectangle& place) override;

  private:
    void Resize(std::int16_t rows, std::int16_t columns);
    void TellChange();

    Terminal& mGrid;
    PDQComm& mSerial;
    TerminalScreen* mScreen;
    std::string mCapturePath;
};

} // namespace qncomm
