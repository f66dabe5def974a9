#include "Operations.h"

#include "control/QNComm.h"
#include "qt/Charset.h"

#include <utility>

namespace qnterm {

Operations::Operations(qncomm::QNComm& control, Waits waits, QObject* parent)
    : QObject(parent),
      mControl(control),
      mWaits(std::move(waits)),
      mStatus(
          control.StatusEvent.Connect([this](const std::string& text, std::int16_t percent,
                                             bool& cancel) { OnStatus(text, percent, cancel); })) {}

bool Operations::Run(const QString& sTitle, const Work& work) {
    if (mShut) return false;
    if (Busy()) {
        emit Refused(sTitle);
        return false;
    }
    mRunning = true;
    mCancelled = false;
    emit RunningChanged(true);
    emit Progress(sTitle, -1);
    return Carry(sTitle, work);
}

bool Operations::RunOn(std::int32_t lGeneration, const QString& sTitle, const Work& work) {
    return Run(sTitle, [&](qncomm::QNComm& control) {
        control.RequireGeneration(lGeneration);
        work(control);
    });
}

std::int32_t Operations::Generation() const {
    return mControl.Generation();
}

/// Runs the work and tells its end; the operation counts as ended before anybody is told.
bool Operations::Carry(const QString& title, const Work& work) {
    const auto ended = [this] {
        mRunning = false;
        emit RunningChanged(false);
    };
    try {
        work(mControl);
    } catch (const qncomm::OperationCancelled&) {
        mCancelled = true;
    } catch (const qncomm::QNError& error) {
        ended();
        if (mCancelled)
            emit Done(title, true);
        else
            emit Failed(title, error);
        return false;
    } catch (const std::exception& error) {
        ended();
        emit Failed(title, qncomm::QNError(0, "qnterm", error.what()));
        return false;
    }
    ended();
    emit Done(title, mCancelled);
    return !mCancelled;
}

void Operations::Cancel() {
    mCancelled = true;
    emit Progress(QStringLiteral("Cancelling…"), -1);
    if (mWaits.cancel) mWaits.cancel();
}

void Operations::OnStatus(const std::string& text, int percent, bool& cancel) {
    if (mCancelled) {
        cancel = true;
        if (!mRunning) mCancelled = false; // the control's own toolbar had started it
        return;
    }
    emit Progress(qncomm::FromEither(text), percent);
}

} // namespace qnterm
