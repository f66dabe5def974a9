#pragma once

#include "terminal/view/ScreenReaderText.h"

#include <QAccessibleWidget>

namespace qncomm {

class TerminalView;

/// A terminal view for assistive programs: a text with a cursor. Offsets count characters of the
/// screen's text.
class TerminalAccessible final : public QAccessibleWidget, public QAccessibleTextInterface {
  public:
    explicit TerminalAccessible(TerminalView& view);

    void* interface_cast(QAccessible::InterfaceType type) override;
    QString text(QAccessible::Text kind) const override;
    QAccessible::State state() const override;

    void selection(int selectionIndex, int* startOffset, int* endOffset) const override;
    int selectionCount() const override;
    void addSelection(int startOffset, int endOffset) override;
    void removeSelection(int selectionIndex) override;
    void setSelection(int selectionIndex, int startOffset, int endOffset) override;
    int cursorPosition() const override;
    void setCursorPosition(int position) override;
    QString text(int startOffset, int endOffset) const override;
    int characterCount() const override;
    QRect characterRect(int offset) const override;
    int offsetAtPoint(const QPoint& point) const override;
    void scrollToSubstring(int startIndex, int endIndex) override;
    QString attributes(int offset, int* startOffset, int* endOffset) const override;

  private:
    TerminalView& View() const;
    ReaderScreen Screen() const;
};

/// Tells assistive programs what changed on a view's screen since they were last told.
class TerminalReaders {
  public:
    /// Takes the screen's rows up to, not including, the line contentEnd. Costs nothing while no
    /// such program runs.
    void Tell(QWidget& view, const TerminalText& text, std::uint64_t contentEnd);

  private:
    ScreenReaderText mScreen;
    bool mActive = false;
};

/// Makes every TerminalView a text to assistive programs. Harmless when repeated.
void InstallTerminalAccessibility();

} // namespace qncomm
