// A port whose far side does not answer: the window goes on meanwhile, and what waits for the port
// ends when a person wants it to.

#include "testing/face/ControlRig.h"
#include "testing/face/Windows.h"
#include "testing/line/FloodingServer.h"
#include "testing/line/SilentHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <array>

namespace qncomm::testing {
namespace {

constexpr int BeginMs = 250;       // into the opening
constexpr int LongestEndMs = 1500; // while one look at the far side takes 3 s
constexpr int TickMs = 20;

/// What a person does.
struct End {
    const char* name;
    void (*act)(ControlRig& rig);
};

constexpr std::array Ends{
    End{"Cancel", [](ControlRig& rig) { rig.Widget().cancelOperation(); }},
    End{"Hide", [](ControlRig& rig) { rig.window.hide(); }},
    End{"Close", [](ControlRig& rig) { rig.window.close(); }},
    End{"TearDown", [](ControlRig& rig) { rig.Widget().tearDown(); }},
    End{"Delete", [](ControlRig& rig) { rig.DeleteWidget(); }},
};

class WidgetReach : public ::testing::TestWithParam<End> {
  protected:
    /// Ends a search on that port in the middle of its first opening.
    static void EndSearchOn(const std::string& address) {
        ControlRig rig(QString::fromStdString(address));
        ShowActive(rig.window);
        QElapsedTimer sinceEnd;
        int ticks = 0;
        QTimer ticking;
        QObject::connect(&ticking, &QTimer::timeout, &ticking, [&] { ++ticks; });
        ticking.start(TickMs);
        QTimer::singleShot(BeginMs, &rig.window, [&] {
            EXPECT_TRUE(rig.Widget().isBusy());
            EXPECT_FALSE(rig.Widget().assembly().Serial().PortOpen());
            sinceEnd.start();
            GetParam().act(rig);
        });
        rig.Widget().run([](QNComm& control) { control.DoAutoconnect(); });
        ASSERT_TRUE(sinceEnd.isValid()) << "the search has ended by itself";
        EXPECT_LT(sinceEnd.elapsed(), LongestEndMs);
        EXPECT_GE(ticks, BeginMs / TickMs / 2) << "the window stood still";
        EXPECT_FALSE(rig.HasWidget() && rig.Widget().isBusy());
    }
};

TEST_P(WidgetReach, EndsASearchOnAServerThatSaysNothing) {
    const FloodingServer server("");
    EndSearchOn("rfc2217://127.0.0.1:" + server.Service());
}

TEST_P(WidgetReach, EndsASearchOnAHostThatLetsNobodyIn) {
    const SilentHost host;
    EndSearchOn("tcp://127.0.0.1:" + host.Service());
}

INSTANTIATE_TEST_SUITE_P(By, WidgetReach, ::testing::ValuesIn(Ends),
                         [](const auto& end) { return end.param.name; });

/// The widget's end while its terminal alone waits for the port.
TEST(WidgetReaching, OfATerminalEndsWithItsWidget) {
    const FloodingServer server("");
    QElapsedTimer whole;
    whole.start();
    {
        ControlRig rig(QString::fromStdString("rfc2217://127.0.0.1:" + server.Service()));
        ShowActive(rig.window);
        QTest::qWait(BeginMs);
        EXPECT_FALSE(rig.Widget().isBusy());
        EXPECT_FALSE(rig.Widget().assembly().Serial().PortOpen());
    }
    EXPECT_LT(whole.elapsed(), LongestEndMs);
}

} // namespace
} // namespace qncomm::testing
