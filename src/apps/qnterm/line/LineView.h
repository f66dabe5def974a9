#pragma once

#include "trace/TraceRows.h"

#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <cstdint>
#include <memory>
#include <string_view>

class QPlainTextEdit;

namespace qnterm {

class LineRecorder;

/// What travels on the line while the view is shown, both ways, a row for each line of text or 16
/// bytes of hex, with the time of day. Sends nothing.
class LineView final : public QWidget {
    Q_OBJECT

  public:
    explicit LineView(std::shared_ptr<LineRecorder> recorder, QWidget* parent = nullptr);
    ~LineView() override;

    void Clear();

  signals:
    /// The user wants to listen at other settings of the line.
    void WatchWanted();

  private:
    void Build();
    void Record(std::int64_t ms, qncomm::TraceKind kind, std::string_view bytes);
    void Take(const qncomm::TraceRow& row);
    void ShowTaken();
    void SetForm(qncomm::TraceRows::Form form);

    std::shared_ptr<LineRecorder> mRecorder;
    QPlainTextEdit* mText;
    qncomm::TraceRows mRows;
    std::int64_t mEpoch = 0; ///< what the loop's ms are counted from, in ms since 1970
    QStringList mTaken;      ///< rows that are still to be shown
    QTimer mShowing;         ///< rows are shown together, a few times a second
    QTimer mQuiet;           ///< what has not ended its row is shown when no more comes
};

} // namespace qnterm
