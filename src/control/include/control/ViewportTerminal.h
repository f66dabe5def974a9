#pragma once

#include "control/TerminalFont.h"

#include <cstdint>
#include <string>

namespace qncomm {

/// The terminal's display states that the control knows; a terminal may have more.
enum DisplayStateValue : std::int16_t { DisplayOff = 0, DisplayActive = 1, DisplayDesign = 5 };

/// The rectangle of a piece of the control, in its scale units.
struct Rectangle {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool operator==(const Rectangle&) const = default;
};

/// What the control asks of the terminal that is its viewport: a grid of characters with a cursor.
/// Rows and columns count from 1, text is 8-bit as the line brought it, colours are 0x00BBGGRR or
/// negative for a colour of the system. Whoever implements it also shows it and sends what is typed
/// into it while the receive mode is 2.
class ViewportTerminal {
  public:
    virtual ~ViewportTerminal() = default;

    virtual std::int32_t BackColor() const = 0;
    virtual void SetBackColor(std::int32_t lColor) = 0;
    virtual std::int32_t ForeColor() const = 0;
    virtual void SetForeColor(std::int32_t lColor) = 0;
    virtual TerminalFont Font() const = 0;
    virtual void SetFont(const TerminalFont& font) = 0;

    /// A size that the terminal cannot have raises 5.
    virtual std::int16_t Rows() const = 0;
    virtual void SetRows(std::int16_t iRows) = 0;
    virtual std::int16_t Columns() const = 0;
    virtual void SetColumns(std::int16_t iColumns) = 0;

    virtual std::int16_t CursorRow() const = 0;
    /// Goes to the nearest row that there is.
    virtual void SetCursorRow(std::int16_t iRow) = 0;
    virtual std::int16_t CursorColumn() const = 0;

    /// All rows at full width with CR LF between them.
    virtual std::string ScreenText() const = 0;
    /// Empties the screen; where the cursor goes is the terminal's business.
    virtual void ClearScreen() = 0;

    /// Appends what is shown from now on to the file, in place of a capture that runs. Raises 70,
    /// 75 or 76 when the file cannot be opened; the capture that ran goes on then.
    virtual void CaptureTo(const std::string& sPath) = 0;

    /// A DisplayStateValue; a terminal that shows itself is not 0.
    virtual std::int16_t DisplayState() const = 0;
    virtual void SetDisplayState(std::int16_t iState) = 0;
    virtual void SetFocus() = 0;
    virtual void Move(const Rectangle& place) = 0;
};

} // namespace qncomm
