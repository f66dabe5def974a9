// A window that closes while the control is at work: the operation ends, the port is closed, and
// the program's own loop returns.

#include "testing/core/ScratchFolder.h"
#include "testing/face/ControlRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QTimer>

namespace qncomm::testing {
namespace {

/// Runs the program's loop as main() does; the window closes a moment after the operation has
/// begun. Each of these operations would go on for minutes.
class WidgetEnd : public ::testing::Test {
  protected:
    WidgetEnd() { QApplication::setQuitOnLastWindowClosed(true); }
    ~WidgetEnd() override { QApplication::setQuitOnLastWindowClosed(false); }

    void CloseDuring(ControlRig& rig, const std::function<void(QNComm&)>& operation) {
        rig.Show();
        QTimer::singleShot(0, &rig.window, [&] { rig.Widget().run(operation); });
        QTimer::singleShot(300, &rig.window, [&] {
            EXPECT_TRUE(rig.Widget().isBusy());
            rig.window.close();
        });
        QApplication::exec();
        EXPECT_FALSE(rig.Widget().isBusy());
        const PDQComm& serial = rig.Widget().assembly().Serial();
        EXPECT_TRUE(WaitUntil([&] { return !serial.PortOpen(); }));
    }
};

TEST_F(WidgetEnd, DuringASearch) {
    ControlRig rig(QStringLiteral("sim:R7G?no-echo=on&baud=300"));
    CloseDuring(rig, [](QNComm& control) { control.DoAutoconnect(); });
}

TEST_F(WidgetEnd, DuringAReboot) {
    ControlRig rig(QStringLiteral("sim:R7G?baud=57600&format=n,8,1&boot-ms=3600000"));
    CloseDuring(rig, [](QNComm& control) { control.Reboot(); });
}

TEST_F(WidgetEnd, DuringATransfer) {
    const ScratchFolder folder;
    const std::string path = folder.Write("large.bin", std::string(5'000'000, 'x'));
    ControlRig rig(QStringLiteral("sim:R7G?baud=57600&format=n,8,1&paced=on"));
    CloseDuring(rig, [&](QNComm& control) { control.KermitUpload(path, "c:LARGE.BIN"); });
}

TEST_F(WidgetEnd, OfADockedControlThatIsHiddenComesAfterItsTransfer) {
    const ScratchFolder folder;
    const std::string path = folder.Write("large.bin", std::string(5'000'000, 'x'));
    ControlRig rig(QStringLiteral("sim:R7G?baud=57600&format=n,8,1&paced=on"));
    rig.Show();
    const PDQComm& serial = rig.Widget().assembly().Serial();
    QTimer::singleShot(200, &rig.window, [&] { rig.Widget().hide(); });
    QTimer::singleShot(400, &rig.window, [&] {
        EXPECT_TRUE(rig.Widget().isBusy());
        EXPECT_TRUE(serial.PortOpen());
        rig.Widget().cancelOperation();
    });
    rig.Widget().run([&](QNComm& control) { control.KermitUpload(path, "c:LARGE.BIN"); });
    EXPECT_FALSE(rig.Widget().isBusy());
    EXPECT_FALSE(serial.PortOpen());
}

TEST_F(WidgetEnd, OfAnIdleControlLeavesTheOperationOfAnotherAlone) {
    const QString silent = QStringLiteral("sim:R7G?no-echo=on&baud=300");
    ControlRig idle(silent);
    ControlRig rig(silent);
    idle.Show();
    QTimer::singleShot(200, &idle.window, [&] {
        EXPECT_FALSE(idle.Widget().isBusy());
        idle.window.close();
        EXPECT_TRUE(rig.Widget().isBusy());
    });
    CloseDuring(rig, [](QNComm& control) { control.DoAutoconnect(); });
}

} // namespace
} // namespace qncomm::testing
