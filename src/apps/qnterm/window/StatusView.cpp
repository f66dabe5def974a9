#include "StatusView.h"

#include "Icons.h"
#include "Operations.h"

#include "qt/ShownText.h"

#include <QLabel>
#include <QProgressBar>
#include <QStatusBar>
#include <QTimer>
#include <QToolButton>

#include <utility>

namespace qnterm {
namespace {

constexpr int MessageMs = 8000;
constexpr int WatchMs = 200;
constexpr int ProgressWidth = 160;

/// The lamp before the port's name.
enum class Lamp { Off, On, Fault };

QString LampText(Lamp lamp) {
    static const char* const colours[] = {"#8a8f98", "#2e9e5b", "#d0453b"};
    return QStringLiteral("<span style=\"color:%1\">●</span>&nbsp;")
        .arg(QLatin1String(colours[static_cast<int>(lamp)]));
}

} // namespace

StatusView::StatusView(QStatusBar& bar, Operations& operations)
    : QObject(&bar),
      mBar(bar),
      mOperations(operations),
      mText(new QLabel),
      mProgress(new QProgressBar),
      mCancel(new QToolButton),
      mWhy(new QToolButton),
      mPort(new QLabel),
      mSettle(new QTimer(this)),
      mWatch(new QTimer(this)) {
    mText->setTextFormat(Qt::PlainText);
    mText->setAccessibleName(tr("Status"));
    mText->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    mProgress->setFixedWidth(ProgressWidth);
    mProgress->setAccessibleName(tr("Progress"));
    mCancel->setText(tr("Cancel"));
    mCancel->setIcon(ThemedIcon("cancel"));
    mCancel->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    mCancel->setAutoRaise(true);
    mCancel->setAccessibleName(tr("Cancel the operation"));
    mWhy->setText(tr("Wh&y?"));
    mWhy->setAutoRaise(true);
    mWhy->setAccessibleName(tr("Why does no printer answer?"));
    mWhy->setToolTip(tr("Look why no printer answers; nothing is changed"));
    mPort->setTextFormat(Qt::RichText);
    mPort->setAccessibleName(tr("Port"));
    mBar.addWidget(mText, 1);
    mBar.addWidget(mProgress);
    mBar.addWidget(mCancel);
    mBar.addPermanentWidget(mWhy);
    mBar.addPermanentWidget(mPort);
    mProgress->hide();
    mCancel->hide();
    mWhy->hide();
    mSettle->setSingleShot(true);
    connect(mSettle, &QTimer::timeout, this, [this] { Say({}); });
    mWatch->setInterval(WatchMs);
    connect(mWatch, &QTimer::timeout, this, [this] { OnRunning(mOperations.Busy()); });
    connect(mCancel, &QToolButton::clicked, &mOperations, &Operations::Cancel);
    connect(mWhy, &QToolButton::clicked, this, &StatusView::WhyWanted);
    connect(&mOperations, &Operations::Progress, this, &StatusView::OnProgress);
    connect(&mOperations, &Operations::RunningChanged, this, &StatusView::OnRunning);
    connect(&mOperations, &Operations::Done, this, &StatusView::OnDone);
    connect(&mOperations, &Operations::Failed, this, [this](const QString& title) {
        if (!title.isEmpty()) Say(tr("%1: failed").arg(title));
    });
    connect(&mOperations, &Operations::Refused, this, [this](const QString& title) {
        mText->setText(tr("%1: not now, another operation is running").arg(title));
    });
}

void StatusView::OnRunning(bool running) {
    mProgress->setVisible(running);
    mCancel->setVisible(running);
    mWhy->setVisible(!running && !mAnswered);
    mCancel->setEnabled(true);
    if (running) {
        mSettle->stop();
        return;
    }
    if (mWatch->isActive()) mSettle->start(MessageMs);
    mWatch->stop();
}

void StatusView::OnProgress(const QString& text, int percent) {
    if (!text.isEmpty()) mText->setText(text);
    constexpr int full = 100;
    // A bar without an end shows that something goes on.
    mProgress->setRange(0, percent < 0 ? 0 : full);
    mProgress->setValue(percent);
    mProgress->show();
    mCancel->show();
    if (mOperations.Cancelled()) mCancel->setEnabled(false);
    if (!mOperations.Running()) mWatch->start(); // the control's toolbar has started it
}

void StatusView::OnDone(const QString& title, bool cancelled) {
    if (title.isEmpty())
        Say(mSaid); // which what has just run has not touched
    else
        Say(cancelled ? tr("%1: cancelled").arg(title) : tr("%1: done").arg(title));
}

void StatusView::Say(const QString& sText) {
    mSaid = sText;
    Rest();
    if (!sText.isEmpty()) mSettle->start(MessageMs);
}

/// Shows what stands when nothing runs: what was said last, then what is wrong with the port.
void StatusView::Rest() {
    mText->setText(mSaid.isEmpty() ? mFailure : mSaid);
}

void StatusView::ShowPort(const PortFacts& facts) {
    ShowLamp(facts);
    mAnswered = facts.answered;
    mWhy->setVisible(!mOperations.Running() && !mAnswered);
    mPort->setToolTip(qncomm::TextOfATip(facts.failure));
    const QString failure = facts.open ? QString() : facts.failure;
    if (std::exchange(mFailure, failure) == failure) return;
    if (!failure.isEmpty())
        Say({}); // it tells more than what was said before
    else if (!mOperations.Busy())
        Rest();
}

void StatusView::ShowLamp(const PortFacts& facts) {
    if (facts.name.isEmpty()) {
        mPort->setText(LampText(Lamp::Off) + tr("No port"));
        return;
    }
    const QString name = facts.name.toHtmlEscaped();
    if (facts.open) {
        const QString printer =
            facts.printer.isEmpty() ? QString() : facts.printer.toHtmlEscaped() + tr(" on ");
        const QString doing = facts.doing.isEmpty() ? QString() : tr(", %1").arg(facts.doing);
        const QString at = facts.settings.isEmpty() ? QString() : tr(" at %1").arg(facts.settings);
        mPort->setText(LampText(Lamp::On) + printer + name + at + doing);
    } else if (!facts.failure.isEmpty()) {
        mPort->setText(LampText(Lamp::Fault) + tr("%1 lost").arg(name));
    } else {
        mPort->setText(LampText(Lamp::Off) + tr("%1 closed").arg(name));
    }
}

QString StatusView::PortText() const {
    QString text = mPort->text();
    const qsizetype end = text.indexOf(QLatin1String("&nbsp;"));
    return text.mid(end + 6);
}

QString StatusView::Message() const {
    return mText->text();
}

bool StatusView::OffersCancel() const {
    return mCancel->isVisible() && mCancel->isEnabled();
}

} // namespace qnterm
