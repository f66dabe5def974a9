#pragma once

#include "TerminalInput.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QElapsedTimer>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace qncomm {

class Terminal;
class TerminalChanges;
struct ReaderScreen;
struct TextPosition;
enum class ViewCommand : std::uint8_t;

/// Shows a terminal's grid and its scroll-back, and hands in what the user types and does.
///
/// It follows the cursor until the user scrolls back; then what is shown stays in its place while
/// more comes, until a key is typed or the end is reached again. What changed is painted at most 60
/// times a second, however fast it changes.
///
/// Keys of its own: Ctrl+F searches, Ctrl with plus, minus, 0 and the wheel zooms, Ctrl+Shift+C and
/// Ctrl+Shift+V copy and paste, Ctrl+Shift+A marks everything, Ctrl+Break and Ctrl+Shift+B break
/// the line, Shift with Page Up, Page Down, Home and End looks back, Ctrl+Tab leaves.
class TerminalView : public QAbstractScrollArea {
    Q_OBJECT

  public:
    /// Grid, its changes and input must outlive the view.
    TerminalView(const Terminal& grid, TerminalChanges changes, TerminalInput& input,
                 QWidget* parent = nullptr);
    ~TerminalView() override;

    /// To be called when the grid or its appearance has changed: the view repaints within 50 ms.
    void GridChanged();

    /// The height of a row of text.
    int RowHeight() const;

    bool HasSelection() const;
    /// Where the selection starts and ends; two equal places when nothing is marked.
    std::pair<TextPosition, TextPosition> SelectionRange() const;
    void Select(const TextPosition& from, const TextPosition& to);
    /// What is marked, with CR LF between lines, as bytes of the line; empty without a selection.
    std::string SelectedText() const;
    void SelectAll();
    void ClearSelection();

    void ShowSearch();
    /// Marks the next, or previous, occurrence of the text and scrolls to it. False when it is not
    /// found.
    bool FindNext(const QString& sText);
    bool FindPrevious(const QString& sText);

    /// Makes the text larger or smaller by tenths of itself; the terminal's font stays as it is.
    void ZoomBy(int steps);
    void ZoomReset();
    int ZoomSteps() const;

    /// The line shown first: its number as Terminal counts scroll-back. As many of the
    /// following lines are in view as there is room for.
    std::uint64_t TopLine() const;
    /// Whether new text scrolls into view by itself.
    bool Follows() const;
    void ScrollToEnd();
    /// Scrolls until the line is in view.
    void ScrollToLine(std::uint64_t line);

    /// The cell under a point of the viewport, or the nearest one that holds text.
    TextPosition PositionAt(const QPoint& at) const;
    /// Where a cell is in the viewport: the line's number, the column from 0.
    QRect CellRect(std::uint64_t line, std::size_t column) const;
    QRect CursorRect() const;

    ReaderScreen ScreenForReaders() const;

    /// How many times changes have been painted so far.
    std::uint64_t Frames() const;

    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  signals:
    /// The selection has changed, or is gone.
    void selectionChanged();

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool bNext) override;
    void timerEvent(QTimerEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    struct Parts;

    /// TerminalView.cpp
    void UseFont();
    void ShowFrame();
    void PlaceSearchBar();
    void Ring();
    /// TerminalViewScroll.cpp
    void LayOut();
    void ShowScroll();
    void PaintScroll();
    void UpdateScrollBars();
    void UpdateLine(std::uint64_t line);
    void UpdateCursorCell();
    /// TerminalViewPaint.cpp
    void PaintRows(QPainter& painter, const QRect& exposed);
    void PaintCursor(QPainter& painter);
    void PaintPlaceholder(QPainter& painter);
    void RestartBlink();
    void Blink();
    /// TerminalViewKeys.cpp
    void Run(ViewCommand command);
    bool TakesKey(const QKeyEvent& event) const;
    void TypeBytes(std::string_view bytes);
    bool Find(const QString& text, bool forward);
    /// TerminalViewMouse.cpp
    void DragTo(const QPoint& at);

    std::unique_ptr<Parts> mParts;
};

} // namespace qncomm
