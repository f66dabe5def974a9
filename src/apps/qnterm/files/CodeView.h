#pragma once

#include <QPlainTextEdit>

namespace qnterm {

/// A text editor with the numbers of its lines beside it.
class CodeView final : public QPlainTextEdit {
    Q_OBJECT

  public:
    explicit CodeView(QWidget* parent = nullptr);

    /// Puts the cursor at the start of a line (from 1), shows it and marks it until the text is
    /// changed. A line that is not there marks none.
    void GoToLine(int iLine);
    int MarkedLine() const { return mMarked; }

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    class Margin;

    int MarginWidth() const;
    void LayOut();
    void PaintMargin(QPaintEvent* event);
    void Mark(int line);

    QWidget* mMargin;
    int mMarked = 0;
};

} // namespace qnterm
