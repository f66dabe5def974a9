#pragma once

#include <QObject>
#include <QString>

class QLabel;
class QProgressBar;
class QStatusBar;
class QTimer;
class QToolButton;

namespace qnterm {

class Operations;

/// What is known of the port.
struct PortFacts {
    bool open = false;
    QString name;          ///< for the user, such as "COM3 (/dev/ttyUSB0)"; empty = none is chosen
    QString printer;       ///< what answers there; empty = not known
    QString failure;       ///< why it did not open or went away; empty = neither
    QString doing = {};    ///< what the printer does, in a word; empty = nothing worth telling
    bool answered = true;  ///< a printer answers there, or nothing is expected to
    QString settings = {}; ///< of the line, such as "9600,N,8,2"; empty = not told
};

/// The status bar: the state of the port, and of what runs its progress with a button that cancels
/// it.
class StatusView final : public QObject {
    Q_OBJECT

  public:
    StatusView(QStatusBar& bar, Operations& operations);

    void ShowPort(const PortFacts& facts);
    /// A message that stands for a while.
    void Say(const QString& sText);

    /// What is shown now.
    QString PortText() const;
    QString Message() const;
    bool OffersCancel() const;

  signals:
    /// The user wants to know why no printer answers.
    void WhyWanted();

  private:
    void OnProgress(const QString& text, int percent);
    void OnRunning(bool running);
    void Rest();
    void ShowLamp(const PortFacts& facts);
    void OnDone(const QString& title, bool cancelled);

    QStatusBar& mBar;
    Operations& mOperations;
    QLabel* mText;
    QProgressBar* mProgress;
    QToolButton* mCancel;
    QToolButton* mWhy;
    QLabel* mPort;
    QString mSaid;         ///< stands until mSettle
    QString mFailure;      ///< why the port is not open
    bool mAnswered = true; ///< as the facts have it
    QTimer* mSettle;       ///< takes the message about an ended operation away after a while
    QTimer* mWatch;        ///< runs during operations that no action has started
};

} // namespace qnterm
