#pragma once

#include "TerminalText.h"

#include <QList>
#include <QString>

#include <cstdint>
#include <vector>

class QWidget;

namespace qncomm {

/// The screen as a screen reader takes it: its lines down to the last that holds anything, without
/// the blanks at their ends but with those left of the cursor, line feeds between them.
struct ReaderScreen {
    std::uint64_t firstLine = 0;
    QString text;
    QList<int> lineStarts;
    int cursor = 0; ///< characters before it

    /// Which line and column a character stands at.
    TextPosition PositionOf(int offset) const;
    /// The character at a place, or the end of its line.
    int OffsetOf(const TextPosition& position) const;
};

ReaderScreen ReaderScreenOf(const TerminalText& text, std::uint64_t contentEnd);

/// What became of a piece of the text: taken away or put in.
struct TextChange {
    int at = 0;
    QString text;
    bool inserted = false;
};

/// Tells assistive programs what changed on the screen since it was last told.
class ScreenReaderText {
  public:
    /// Costs nothing while no such program runs.
    void Tell(QWidget& view, const TerminalText& text, std::uint64_t contentEnd);

    /// How the last screen becomes this one, step by step: lines that have left the screen, then
    /// what differs.
    std::vector<TextChange> Follow(ReaderScreen now);

  private:
    ReaderScreen mTold;
    bool mActive = false;
};

/// Makes every TerminalView a text to assistive programs. Harmless when repeated.
void InstallTerminalAccessibility();

} // namespace qncomm
