#include "LineView.h"

#include "CommandBar.h"
#include "LineRecorder.h"

#include "qt/Charset.h"

#include <QAction>
#include <QDateTime>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include <utility>

namespace qnterm {
namespace {

constexpr int KeptRows = 10'000;
constexpr int ShowMs = 50;
constexpr int QuietMs = 200;

/// ">" for what this side sent, "<" for what came, "*" for what happened to the port.
QChar MarkOf(qncomm::TraceKind kind) {
    switch (kind) {
    case qncomm::TraceKind::Sent:
        return QLatin1Char('>');
    case qncomm::TraceKind::Received:
        return QLatin1Char('<');
    default:
        return QLatin1Char('*');
    }
}

} // namespace

LineView::LineView(std::shared_ptr<LineRecorder> recorder, QWidget* parent)
    : QWidget(parent),
      mRecorder(std::move(recorder)),
      mText(new QPlainTextEdit),
      mRows(qncomm::TraceRows::Form::Text, [this](const auto& row) { Take(row); }) {
    Build();
    mShowing.setSingleShot(true);
    mShowing.setInterval(ShowMs);
    connect(&mShowing, &QTimer::timeout, this, &LineView::ShowTaken);
    mQuiet.setSingleShot(true);
    mQuiet.setInterval(QuietMs);
    connect(&mQuiet, &QTimer::timeout, this, [this] { mRows.Flush(); });
    mRecorder->ShowIn([this](std::int64_t ms, qncomm::TraceKind kind, std::string_view bytes) {
        Record(ms, kind, bytes);
    });
}

LineView::~LineView() {
    mRecorder->ShowIn({});
}

void LineView::Build() {
    mText->setReadOnly(true);
    mText->setMaximumBlockCount(KeptRows);
    mText->setLineWrapMode(QPlainTextEdit::NoWrap);
    mText->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    mText->setAccessibleName(tr("What travels on the line"));
    mText->setPlaceholderText(tr("What travels on the line is shown here from now on, with its "
                                 "time: > sent, < received, * the port."));
    setFocusProxy(mText);
    auto* bar = new CommandBar(*this);
    connect(bar->Add("find", tr("&Watch…"), tr("Listen at settings of your choice; sends nothing")),
            &QAction::triggered, this, &LineView::WatchWanted);
    connect(bar->Add("clear", tr("&Clear"), tr("Empty the list")), &QAction::triggered, this,
            &LineView::Clear);
    QAction* hex = bar->Add("info", tr("&Hex"), tr("Show the bytes as hex digits"));
    hex->setCheckable(true);
    connect(hex, &QAction::toggled, this, [this](bool on) {
        SetForm(on ? qncomm::TraceRows::Form::Hex : qncomm::TraceRows::Form::Text);
    });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 0, 4, 4);
    layout->setSpacing(4);
    layout->addWidget(bar);
    layout->addWidget(mText, 1);
}

void LineView::SetForm(qncomm::TraceRows::Form form) {
    mRows.Flush();
    mRows = qncomm::TraceRows(form, [this](const auto& row) { Take(row); });
}

void LineView::Clear() {
    mTaken.clear();
    mText->clear();
}

void LineView::Record(std::int64_t ms, qncomm::TraceKind kind, std::string_view bytes) {
    if (!isVisible()) return;
    if (mEpoch == 0) mEpoch = QDateTime::currentMSecsSinceEpoch() - ms;
    mRows.Add(ms, kind, bytes);
    mQuiet.start();
}

void LineView::Take(const qncomm::TraceRow& row) {
    const QString time =
        QDateTime::fromMSecsSinceEpoch(mEpoch + row.ms).toString(QStringLiteral("hh:mm:ss.zzz"));
    const QString text = row.kind == qncomm::TraceKind::Event ? qncomm::FromHost(row.text)
                                                              : qncomm::FromLine(row.text);
    if (mTaken.size() >= KeptRows) mTaken.removeFirst(); // a line that talks faster than any eye
    mTaken.append(time + QStringLiteral("  ") + MarkOf(row.kind) + QStringLiteral("  ") + text);
    if (!mShowing.isActive()) mShowing.start();
}

void LineView::ShowTaken() {
    if (mTaken.isEmpty()) return;
    mText->appendPlainText(std::exchange(mTaken, {}).join(QLatin1Char('\n')));
}

} // namespace qnterm
