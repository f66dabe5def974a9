#include "testing/face/ViewRig.h"

#include "terminal/TerminalChanges.h"
#include "terminal/view/TerminalText.h"
#include "testing/face/Windows.h"

#include <gtest/gtest.h>

namespace qncomm::testing {

ViewRig::ViewRig(Terminal::Options options, QSize size)
    : grid(std::move(options)), view(grid, TerminalChanges(grid), input) {
    grid.Appearance().displayState = 1;
    view.resize(size);
    ShowActive(view);
    view.setFocus();
    view.GridChanged();
}

void ViewRig::Receive(std::string_view text) {
    const std::uint64_t frames = view.Frames();
    grid.Write(text);
    view.GridChanged();
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.Frames() != frames; }));
}

void ViewRig::ReceiveLines(int first, int count) {
    std::string text;
    for (int line = first; line < first + count; ++line)
        text += "line " + std::to_string(line) + "\r\n";
    Receive(text);
}

void ViewRig::Press(int key, Qt::KeyboardModifiers held) {
    QTest::keyClick(&view, static_cast<Qt::Key>(key), held);
}

QPoint ViewRig::CellAt(int row, int column) const {
    const std::uint64_t line = view.TopLine() + static_cast<std::uint64_t>(row);
    return view.CellRect(line, static_cast<std::size_t>(column)).center();
}

void ViewRig::Drag(QPoint from, QPoint to, Qt::KeyboardModifiers held) {
    QTest::mousePress(view.viewport(), Qt::LeftButton, held, from);
    QMouseEvent move(QEvent::MouseMove, to, view.viewport()->mapToGlobal(to), Qt::NoButton,
                     Qt::LeftButton, held);
    QApplication::sendEvent(view.viewport(), &move);
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, held, to);
}

std::string ViewRig::LineInView(int row) const {
    return TerminalText(grid).Line(view.TopLine() + static_cast<std::uint64_t>(row)).text;
}

QColor ViewRig::ColourAt(int row, int column) {
    const std::uint64_t line = view.TopLine() + static_cast<std::uint64_t>(row);
    const QRect cell = view.CellRect(line, static_cast<std::size_t>(column));
    const QImage picture = view.viewport()->grab().toImage();
    const QPointF at = QPointF(cell.left() + 1, cell.top() + 1) * picture.devicePixelRatio();
    return picture.pixelColor(at.toPoint());
}

} // namespace qncomm::testing
