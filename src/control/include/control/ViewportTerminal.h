#pragma once

#include "control/TerminalFont.h"

#include <cstdint>
#include <string>

namespace qncomm {

/// The terminal's display states that the control knows; a terminal may have more.
enum DisplayStateValue : std::int16_t {
    DisplayOff = 0,    ///< not shown: the frame is not laid out
    DisplayActive = 1, ///< shows what the line brings
    DisplayDesign = 5, ///< on a form under design: looks without a line
};

/// The rectangle of a piece of the control, in its scale units.
struct Rectangle {
    std::int32_t left = 0;   ///< from the control's left edge
    std::int32_t top = 0;    ///< from the control's upper edge
    std::int32_t width = 0;  ///< never negative
    std::int32_t height = 0; ///< never negative
    /// Equal in all four numbers.
    bool operator==(const Rectangle&) const = default;
};

/// What the control asks of the terminal that is its viewport: a grid of characters with a cursor.
/// Rows and columns count from 1, text is 8-bit as the line brought it, colours are 0x00BBGGRR or
/// negative for a colour of the system. The implementation also shows it and sends what is typed
/// into it while the receive mode is ReceiveToTerminal. Single-threaded.
class ViewportTerminal {
  public:
    virtual ~ViewportTerminal() = default;

    /// The background where the line has set no other.
    virtual std::int32_t BackColor() const = 0;
    /// Counts at once, for what is shown already too.
    virtual void SetBackColor(std::int32_t lColor) = 0;
    /// The colour of text where the line has set no other.
    virtual std::int32_t ForeColor() const = 0;
    /// Counts at once, for what is shown already too.
    virtual void SetForeColor(std::int32_t lColor) = 0;
    /// The font as it was set, also when the system shows another in its place.
    virtual TerminalFont Font() const = 0;
    /// Shows all text in that font; the grid keeps its size in rows and columns.
    virtual void SetFont(const TerminalFont& font) = 0;

    /// How many rows the grid has.
    virtual std::int16_t Rows() const = 0;
    /// Resizes the grid. Raises 5 for a size that it cannot have and changes nothing then.
    virtual void SetRows(std::int16_t iRows) = 0;
    /// How many columns the grid has.
    virtual std::int16_t Columns() const = 0;
    /// Resizes the grid. Raises 5 for a size that it cannot have and changes nothing then.
    virtual void SetColumns(std::int16_t iColumns) = 0;

    /// The cursor's row, from 1.
    virtual std::int16_t CursorRow() const = 0;
    /// Goes to the nearest row that there is.
    virtual void SetCursorRow(std::int16_t iRow) = 0;
    /// The cursor's column, from 1.
    virtual std::int16_t CursorColumn() const = 0;

    /// All rows at full width with CR LF between them.
    virtual std::string ScreenText() const = 0;
    /// Empties the screen; the terminal decides where the cursor goes.
    virtual void ClearScreen() = 0;

    /// Appends what is shown from now on to the file, in place of a capture that runs. Raises 70,
    /// 75 or 76 when the file cannot be opened; the capture that ran goes on then.
    virtual void CaptureTo(const std::string& sPath) = 0;

    /// A DisplayStateValue; a terminal that shows itself is not 0.
    virtual std::int16_t DisplayState() const = 0;
    /// Switches to a DisplayStateValue; a terminal may know more of them.
    virtual void SetDisplayState(std::int16_t iState) = 0;
    /// Gives the terminal the keyboard focus. A terminal without a keyboard ignores it.
    virtual void SetFocus() = 0;
    /// Puts the terminal in its place within the control, in the scale units of ControlWindow.
    virtual void Move(const Rectangle& place) = 0;
};

} // namespace qncomm
