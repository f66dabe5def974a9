#pragma once

#include "common/Event.h"
#include "common/QNError.h"

#include <QObject>
#include <QString>

#include <cstdint>
#include <functional>

namespace qncomm {
class QNComm;
}

namespace qnterm {

/// Runs the control's members on behalf of actions, one at a time, and reports all of them in the
/// same way: progress while they run, a failure when one raised an error. A cancelled operation
/// ends without a failure.
///
/// The events of the window are dispatched while an operation waits for the printer, so an action
/// may ask for a second one meanwhile: it is refused.
class Operations : public QObject {
    Q_OBJECT

  public:
    using Work = std::function<void(qncomm::QNComm&)>;

    /// What the control's place on the desktop knows of operations that wait, its own toolbar's
    /// among them.
    struct Waits {
        std::function<bool()> any;    ///< whether one waits; empty = never
        std::function<void()> cancel; ///< ends those that wait, by OperationCancelled
    };

    /// The control must outlive this object.
    Operations(qncomm::QNComm& control, Waits waits, QObject* parent = nullptr);

    /// Runs work. sTitle names it for the user: "Delete c:LAYOUT.LBL". False when it was refused,
    /// cancelled or failed.
    bool Run(const QString& sTitle, const Work& work);
    /// The same for work on what was read from the printer in that generation (QNComm::Generation):
    /// fails, with nothing done, when it is no longer this printer's.
    bool RunOn(std::int32_t lGeneration, const QString& sTitle, const Work& work);

    /// The generation of what is shown and asked now.
    std::int32_t Generation() const;

    bool Running() const { return mRunning; }
    /// Whether anything waits for the printer, also what was not started here.
    bool Busy() const { return mRunning || (mWaits.any && mWaits.any()); }
    /// Whether Cancel was asked for since the operation began.
    bool Cancelled() const { return mCancelled; }

    /// Asks the running operation to end: it is cancelled at its next report of progress, and a
    /// wait at once.
    void Cancel();

    /// Refuses every operation from now on.
    void Shut() { mShut = true; }
    /// Whether that was asked for: what runs should end.
    bool IsShut() const { return mShut; }

  signals:
    void RunningChanged(bool bRunning);
    /// sText may be empty; iPercent is -1 where the progress is not known.
    void Progress(const QString& sText, int iPercent);
    /// The operation of that title has ended well or was cancelled.
    void Done(const QString& sTitle, bool bCancelled);
    void Failed(const QString& sTitle, const qncomm::QNError& error);
    /// Another operation is running, so this one was not started.
    void Refused(const QString& sTitle);

  private:
    bool Carry(const QString& title, const Work& work);
    void OnStatus(const std::string& text, int percent, bool& cancel);

    qncomm::QNComm& mControl;
    Waits mWaits;
    qncomm::Subscription mStatus;
    bool mRunning = false;
    bool mCancelled = false;
    bool mShut = false;
};

} // namespace qnterm
