#pragma once

#include "common/MemorySettings.h"
#include "qt/QNCommWidget.h"
#include "terminal/Terminal.h"
#include "testing/stack/RecordingTrace.h"

#include <QMainWindow>
#include <QPointer>
#include <QTest>

#include <memory>
#include <string>
#include <vector>

namespace qncomm::testing {

/// A control at run time on the virtual printer, in a window of its own.
class ControlRig {
  public:
    static constexpr int PatienceMs = 10'000;

    explicit ControlRig(const QString& address = QStringLiteral("sim:R7G?baud=57600&format=n,8,1"));
    ~ControlRig();
    ControlRig(const ControlRig&) = delete;
    ControlRig& operator=(const ControlRig&) = delete;

    /// Shows the window and waits until the control has the port.
    void Show(QSize size = {900, 420});
    /// Types into the terminal as a person does.
    void Type(const QString& text);
    void Press(Qt::Key key, Qt::KeyboardModifiers held = Qt::NoModifier);
    /// Writes to the terminal as if the line had brought it, and waits until it is painted.
    void Receive(std::string_view text);
    /// Waits until the terminal's screen holds the text.
    bool WaitForScreen(std::string_view text);

    QNCommWidget& Widget() { return *mWidget; }
    QWidget& View();
    const Terminal& Grid() { return mWidget->assembly().Grid(); }
    bool HasWidget() const { return mWidget != nullptr; }
    void DeleteWidget();

    RecordingTrace trace;
    std::shared_ptr<MemorySettings> settings; ///< of a line that the virtual printer is on
    QMainWindow window;
    std::vector<QString> errors;

  private:
    QPointer<QNCommWidget> mWidget;
};

/// Waits until the condition holds; false when it has not after a long time.
template <class Condition>
bool WaitUntil(const Condition& holds) {
    return QTest::qWaitFor(holds, ControlRig::PatienceMs);
}

} // namespace qncomm::testing
