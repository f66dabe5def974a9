#include "dialogs/frmWaitForReboot.h"

#include "dialogs/Dialogs.h"
#include "testing/core/ManualLoop.h"
#include "testing/core/ScriptedForms.h"

#include <gtest/gtest.h>

namespace qncomm {
namespace {

using testing::ManualLoop;

void Pass(ManualLoop& loop, std::int32_t seconds) {
    const std::int64_t end = loop.NowMs() + std::int64_t{seconds} * 1000;
    while (loop.NowMs() < end)
        loop.Yield(static_cast<std::int32_t>(end - loop.NowMs()));
}

TEST(WaitForReboot, TheBarAdvancesOnceASecond) {
    ManualLoop loop;
    const frmWaitForReboot form(loop);
    EXPECT_EQ(form.ProgressBar1.Value(), 0);
    Pass(loop, 1);
    EXPECT_EQ(form.ProgressBar1.Value(), 1);
    Pass(loop, 28);
    EXPECT_EQ(form.ProgressBar1.Value(), 29);
    EXPECT_EQ(form.ProgressBar1.Max(), 30);
}

TEST(WaitForReboot, AFullBarStaysFullWithoutAnError) {
    ManualLoop loop;
    const frmWaitForReboot form(loop);
    Pass(loop, 45);
    EXPECT_EQ(form.ProgressBar1.Value(), 30);
}

TEST(WaitForReboot, AWaitThatDoesNotYieldFreezesTheBar) {
    ManualLoop loop;
    const frmWaitForReboot form(loop);
    loop.MoveTo(loop.NowMs() + 10'000);
    EXPECT_EQ(form.ProgressBar1.Value(), 0);
}

TEST(WaitForReboot, FacesFollowTheBarUntilTheFormGoes) {
    ManualLoop loop;
    int changes = 0;
    {
        frmWaitForReboot form(loop);
        const Subscription follow = form.ProgressBar1.Changed.Connect([&] { ++changes; });
        Pass(loop, 40);
    }
    Pass(loop, 5);
    EXPECT_EQ(changes, 30);
}

TEST(WaitForReboot, TheWindowIsShownOnceAndTakenAwayWithItsForm) {
    ManualLoop loop;
    testing::ScriptedForms forms;
    Dialogs dialogs(loop, forms);
    auto shown = dialogs.ShowWaitForReboot();
    ASSERT_NE(forms.Shown<frmWaitForReboot>(), nullptr);
    Pass(loop, 3);
    EXPECT_EQ(forms.Shown<frmWaitForReboot>()->ProgressBar1.Value(), 3);
    shown.reset();
    EXPECT_EQ(forms.Shown<frmWaitForReboot>(), nullptr);
}

} // namespace
} // namespace qncomm
