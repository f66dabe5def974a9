#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QToolButton;

namespace qncomm {

/// The line for searching the terminal: a text, next, previous, close.
class SearchBar final : public QWidget {
    Q_OBJECT

  public:
    explicit SearchBar(QWidget* parent);

    QString Text() const;
    /// Shows the bar with its text marked, ready to type.
    void Ask();
    /// Shows, or no longer shows, that the text was not found.
    void ShowFound(bool bFound);

  signals:
    void nextAsked();
    void previousAsked();
    /// The user has typed another text.
    void textChanged();
    void closed();

  protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void ShowPictures();

    QLineEdit* mText;
    QLabel* mNotFound;
    QToolButton* mClose;
};

} // namespace qncomm
