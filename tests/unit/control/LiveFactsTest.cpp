#include "common/modErrorHandling.h"
#include "link/LiveState.h"
#include "testing/core/ControlFixture.h"

#include <string>

namespace qncomm::testing {
namespace {

constexpr const char* ListC = "FILES\"c:\"";

class LiveFactsOfAControl : public ControlFixture {
  protected:
    std::string Fact(std::string_view name) const {
        const auto fact = mControl->LiveFacts()->Item(name);
        return fact->Value + " (" + fact->LearntFrom + ")";
    }
};

TEST_F(LiveFactsOfAControl, AreUnknownBeforeThePortIsOpened) {
    Run();
    EXPECT_EQ(Fact("line"), "unknown (nothing)");
    EXPECT_EQ(Fact("printer"), "unknown (nothing)");
    EXPECT_EQ(Fact("model"), " (nothing)");
    EXPECT_EQ(mControl->LineState(), LineUnknown);
}

TEST_F(LiveFactsOfAControl, TellWhatTheOperationsHaveSeen) {
    mModel = "R7G \x80";
    mSerial.mTarget = "/dev/ttyUSB0";
    Show().PrinterType();
    mLoop.Yield(250);
    EXPECT_EQ(Fact("line"), "open (port)");
    EXPECT_EQ(Fact("printer"), "at prompt (reply)");
    EXPECT_EQ(Fact("model"), "R7G \xE2\x82\xAC (reply)") << "UTF-8";
    EXPECT_EQ(Fact("version"), "Quorin v8.10 (reply)");
    EXPECT_EQ(Fact("port"), "1 (port)");
    EXPECT_EQ(Fact("address"), "/dev/ttyUSB0 (port)");
    EXPECT_EQ(Fact("settings"), "9600,N,8,2,0 (port)");
    EXPECT_EQ(mControl->LineState(), LineOpen);
    EXPECT_EQ(mControl->PrinterActivity(), PrinterAtPrompt);
    EXPECT_GE(mControl->LiveFacts()->Item("model")->AgeMs, 250);
    EXPECT_EQ(Fact("generation").substr(0, 2), std::to_string(mControl->Generation()) + " ");
}

TEST_F(LiveFactsOfAControl, AreToldWhenTheyChange) {
    Run();
    std::vector<std::int16_t> lines;
    const Subscription changes = mControl->LiveStateEvent.Connect(
        [&](std::int16_t line, std::int16_t, std::int32_t) { lines.push_back(line); });
    mControl->UserControl_Show();
    mControl->UserControl_Hide();
    EXPECT_THAT(lines, ElementsAre(LineOpen, LineClosed));
}

TEST_F(LiveFactsOfAControl, AListOfAFormerPrinterIsReadAnew) {
    mReplies[ListC] = {"FILES ON c:", "A.PRG  12", "1 bytes free", "2 bytes used"};
    Show().Files("c:");
    mControl->Files("c:");
    EXPECT_THAT(TakeCommands(), ElementsAre(ListC)) << "one printer is asked once";
    mSerial.Vanish();
    mLoop.Yield(5000);
    mReplies[ListC] = {"FILES ON c:", "B.PRG  12", "1 bytes free", "2 bytes used"};
    EXPECT_TRUE(mControl->Files("c:")->Contains("B.PRG"));
    EXPECT_THAT(TakeCommands(), ElementsAre(ListC));
}

TEST_F(LiveFactsOfAControl, WhatWasReadFromAFormerPrinterIsNotTouched) {
    Show().Files("c:");
    const std::int32_t read = mControl->Generation();
    mControl->RequireGeneration(read);
    mSerial.Vanish();
    mLoop.Yield(5000);
    TakeSent();
    EXPECT_RAISED_FROM(mControl->RequireGeneration(read), "1100 Datalink:RequireGeneration");
    EXPECT_EQ(TakeSent(), "");
}

TEST_F(LiveFactsOfAControl, GenerationsAreNotCountedAgainAfterAnotherStart) {
    Show().Files("c:");
    const std::int32_t read = mControl->Generation();
    mControl->UserControl_Hide();
    Run();
    EXPECT_GT(mControl->Generation(), read);
}

} // namespace
} // namespace qncomm::testing
