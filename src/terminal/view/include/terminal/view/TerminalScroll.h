#pragma once

#include "terminal/view/TerminalText.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace qncomm {

/// Which part of a terminal's text is in view. It follows the cursor until the user scrolls back;
/// then what is shown stays in its place while more comes, until the end is reached again or a key
/// is typed. Lines are numbered as in TerminalText, columns count from 0.
///
/// It paints nothing: after each call a face compares Top and Left with what it has painted.
class TerminalScroll {
  public:
    /// The text must outlive the object.
    explicit TerminalScroll(const TerminalText& text) : mText(text) {}

    /// How many whole rows and columns there is room for; less than 1 counts as 1.
    void SetSize(int rows, int columns);
    /// Whole rows that there is room for, at least 1.
    int Rows() const { return mRows; }
    /// Whole columns that there is room for, at least 1.
    int Columns() const { return mColumns; }

    /// The line shown first.
    std::uint64_t Top() const { return mTop; }
    /// The column shown first.
    std::size_t Left() const { return mLeft; }
    /// Whether new text scrolls into view by itself.
    bool Follows() const { return mFollows; }
    /// Whether any part of the line is in view, that of a row cut by the lower edge included.
    bool Shows(std::uint64_t line) const;

    /// The line at the top when the end of the text is at the bottom. A screen that was cleared is
    /// shown from its first row, empty as it is below, and not what has scrolled off it.
    std::uint64_t LastTop() const;
    /// The greatest column that Left can be brought to.
    std::size_t LastLeft() const;
    /// One behind the last line that holds anything or has the cursor, as of the last Update.
    std::uint64_t ContentEnd() const { return mContentEnd; }
    /// The end of the last line that holds anything; its column is that of the widest line seen.
    TextPosition TextEnd() const { return {mContentEnd - 1, mWidest}; }

    /// Takes over what has changed on the screen. True when rows have become other lines without
    /// leaving into the scroll-back: then nothing that is painted can be moved, and all of it is
    /// painted anew.
    [[nodiscard]] bool Update(const terminal::Damage& damage);

    /// Brings that line to the top, or the nearest that there is, as the user has asked. At the end
    /// of the text it follows again.
    void ScrollTo(std::uint64_t top);
    /// Scrolls by so many lines, as the user has asked: negative towards older ones.
    void ScrollBy(std::int64_t lines);
    /// Scrolls by so many pages, which overlap by one row: negative towards older lines.
    void PageBy(int pages);
    /// Goes to the end and follows.
    void ScrollToEnd();
    /// Brings the line into view, in the middle unless it is there already.
    void ScrollToLine(std::uint64_t line);
    /// Brings that column to the left edge.
    void ScrollToColumn(std::size_t left) { mLeft = left; }
    /// Scrolls by so many columns: negative to the left; stops where the text ends.
    void ScrollColumnsBy(std::int64_t columns);
    /// Brings the columns from, up to, not including, to into view.
    void ShowColumns(std::size_t from, std::size_t to);
    /// A key goes to the line: from now on it follows, and until the next line also to the right,
    /// so that what is typed is in view at the end of a long line too.
    void KeyTyped();

    /// The place at a point that is given in rows and columns from the upper left corner of the
    /// view: the nearest edge between two cells, or the left edge of the cell itself. Outside of
    /// the text it is the nearest place in it.
    TextPosition PositionAt(double row, double column, bool bBetweenCells) const;

  private:
    void Place();
    void FollowCursor();
    void MoveTo(std::uint64_t top);
    void TrackEnd(const terminal::Damage& damage);
    void MeasureWidth();

    const TerminalText& mText;
    std::uint64_t mTop = 0;
    std::size_t mLeft = 0;
    int mRows = 1;
    int mColumns = 1;
    bool mFollows = true;
    std::uint64_t mScreenBegin = 0; ///< as of the last Update
    std::uint64_t mContentEnd = 1;
    std::size_t mWidest = 0;               ///< of the lines seen so far, in cells
    std::optional<std::uint64_t> mTypedOn; ///< the line that the user types on
};

} // namespace qncomm
