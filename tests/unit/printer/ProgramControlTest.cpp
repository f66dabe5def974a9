#include "PrinterFixture.h"
#include "platform/SystemFiles.h"
#include "testing/core/ScratchFolder.h"

namespace qncomm::testing {
namespace {

constexpr const char* Plant = "1 PRINT \"RUN MODE\":END\r\n";

class ProgramControl : public PrinterFixture {
  protected:
    /// The planted line's echo comes with the reply to RUN.
    void ScriptPlantAndRun(const std::string& reply) {
        mSerial.Expect(Plant).Reply(Plant).Expect("RUN\r\n").Reply("RUN\r\n" + reply);
    }
    /// After an error: a claim of its own that deletes the line.
    void ScriptRemoval() { mSerial.Handshake().Expect("1\r\n"); }

    ScratchFolder mFolder;
};

TEST_F(ProgramControl, NewAndSaveSendTheirLines) {
    KnowCleanDevices("R7A");
    Script("NEW");
    mQuorin.NewProgram();
    EXPECT_THAT(DirtyDevices(), IsEmpty());
    Script("SAVE\"card1:A.PRG\",L");
    mQuorin.SaveProgram("card1:A.PRG");
    EXPECT_THAT(DirtyDevices(), ElementsAre("card1:"));
    Script("SAVE\"disk:A.PRG\",L");
    EXPECT_RAISED_FROM(mQuorin.SaveProgram("disk:A.PRG"), "1010 clsQuorin:SetDeviceDirty");
}

TEST_F(ProgramControl, FreIsTheNumberOnTheLineAfterTheEcho) {
    Script("PRINT FRE(0)", {" 1403456"});
    EXPECT_EQ(mQuorin.Fre(), 1403456);
    Script("PRINT FRE(0)", {"plenty"});
    EXPECT_EQ(mQuorin.Fre(), 0);
    Script("PRINT FRE(0)", {"9999999999"});
    EXPECT_RAISED(mQuorin.Fre(), 6);
    RefusePort();
    EXPECT_EQ(mQuorin.Fre(), 0);
    GrantPort();
}

// -- Running

TEST_F(ProgramControl, ARunWithoutALine1PlantsOneForTheStart) {
    mSerial.Handshake().Exchange("List 1");
    ScriptPlantAndRun("RUN MODE\r\nOk\r\n");
    mSerial.Expect("1\r\n").Reply("1\r\n").Expect("RUN\r\n").Reply("hello from the program\r\n");
    const std::int64_t start = mLoop.NowMs();
    mQuorin.RunProgram();
    EXPECT_EQ(mLoop.NowMs() - start, 501);
    EXPECT_THAT(mMessages, ElementsAre("Starting printer program... -1", "Ok -1"));
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
}

TEST_F(ProgramControl, ARunOfAProgramWithALine1LeavesItAlone) {
    mSerial.Handshake().Exchange("List 1", {"1 REM start"}).Expect("RUN\r\n");
    mQuorin.RunProgram();
}

TEST_F(ProgramControl, WhatTheStartedProgramPrintsDoesNotReachTheNextReply) {
    mSerial.Handshake().Exchange("List 1", {"1 REM start"}).Expect("RUN\r\n").Reply("7\r\nOk\r\n");
    mQuorin.RunProgram();
    Script("PRINT FRE(0)", {"12"});
    EXPECT_EQ(mQuorin.Fre(), 12);
}

TEST_F(ProgramControl, ARunThatTheProgramCancelsStillRuns) {
    mOnStatus = [](const std::string&, std::int16_t) { return true; };
    mSerial.Handshake().Exchange("List 1", {"1 REM"}).Expect("RUN\r\n");
    mQuorin.RunProgram();
}

TEST_F(ProgramControl, AnErrorInTheRunDeletesThePlantedLineAndIsRaised) {
    mSerial.Handshake().Exchange("List 1");
    ScriptPlantAndRun("Error 19 in line 12: Syntax error\r\nOk\r\n");
    ScriptRemoval();
    EXPECT_RAISED_FROM(mQuorin.RunProgram(), "60019 clsDatalink:GetPrinterError");
    EXPECT_TRUE(mSerial.ScriptDone());
    EXPECT_THAT(mMessages, ElementsAre("Starting printer program... -1"));
}

TEST_F(ProgramControl, ASilentRunDeletesThePlantedLineAndTimesOut) {
    mSerial.Handshake().Exchange("List 1").Expect(Plant).Expect("RUN\r\n");
    ScriptRemoval();
    const std::int64_t start = mLoop.NowMs();
    EXPECT_RAISED(mQuorin.RunProgram(), ErrInputTimeout);
    EXPECT_EQ(mLoop.NowMs() - start, 30001 + 101 + 1001)
        << "the next claim waits for silence first";
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(ProgramControl, WhenTheRemovalFailsTooTheFirstErrorIsRaised) {
    mSerial.Handshake().Exchange("List 1");
    ScriptPlantAndRun("Error 19: Syntax error\r\nOk\r\n");
    mSerial.Expect("PRINT SYSVAR(18):PRINT SYSVAR(19):SYSVAR(18)=-1:SYSVAR(19)=2\r\n");
    EXPECT_RAISED(mQuorin.RunProgram(), 60019);
    ASSERT_EQ(mDesktop.mLog.size(), 1U);
    EXPECT_THAT(mDesktop.mLog[0], ::testing::StartsWith("the planted line 1 stayed"));
}

TEST_F(ProgramControl, ListingLine1MayTakeThreeSeconds) {
    mSerial.Handshake().Expect("List 1\r\n").Reply("List 1\r\n1 REM\r\nOk\r\n", 2999);
    mSerial.Expect("RUN\r\n");
    mQuorin.RunProgram();
    mSerial.Handshake().Expect("List 1\r\n");
    EXPECT_RAISED(mQuorin.IsProgramRunable(), ErrInputTimeout);
}

TEST_F(ProgramControl, ARefusedPortRaisesNoEvent) {
    RefusePort();
    mQuorin.RunProgram();
    EXPECT_FALSE(mQuorin.IsProgramRunable());
    EXPECT_THAT(mMessages, IsEmpty());
    GrantPort();
}

TEST_F(ProgramControl, AHandlerInTheMiddleOfAnExchangeIsRefusedThePort) {
    mOnStatus = [this](const std::string& text, std::int16_t) {
        if (text == "Starting printer program...") {
            EXPECT_FALSE(mQuorin.PortOpen());
        }
        return false;
    };
    mSerial.Handshake().Exchange("List 1", {"1 REM"}).Expect("RUN\r\n");
    mQuorin.RunProgram();
    EXPECT_THAT(mDesktop.mLog, ElementsAre("port not available"));
}

TEST_F(ProgramControl, AHandlerOfTheClosingEventMayStartTheNextOperation) {
    mOnStatus = [this](const std::string& text, std::int16_t) {
        if (text == "Ok") {
            EXPECT_EQ(mQuorin.Fre(), 5);
        }
        return false;
    };
    mSerial.Handshake().Exchange("List 1", {"1 REM"}).Expect("RUN\r\n");
    Script("PRINT FRE(0)", {"5"});
    mQuorin.RunProgram();
}

// -- Checking

TEST_F(ProgramControl, AProgramThatRunsIntoThePlantedLineIsRunnable) {
    for (const char* reply : {"RUN MODE\r\nOk\r\n", "\r\nOk\r\n"}) {
        mSerial.Handshake().Exchange("List 1");
        ScriptPlantAndRun(reply);
        mSerial.Expect("1\r\n").Reply("1\r\n");
        const std::int64_t start = mLoop.NowMs();
        EXPECT_EQ(mQuorin.IsProgramRunable(), std::string(reply).starts_with("RUN"));
        EXPECT_EQ(mLoop.NowMs() - start, 1001);
    }
    EXPECT_EQ(mMessages[0], "Checking printer program status... -1");
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
}

TEST_F(ProgramControl, ThePlantedOutputIsLookedForOnTheTwoLinesAfterTheFirst) {
    const auto runs = [this](const std::string& reply) {
        mSerial.Handshake().Exchange("List 1").Expect(Plant).Expect("RUN\r\n").Reply(reply);
        mSerial.Expect("1\r\n");
        return mQuorin.IsProgramRunable();
    };
    EXPECT_TRUE(runs("RUN\r\nRUN MODE\r\nOk\r\n"));
    EXPECT_TRUE(runs(Plant + std::string("RUN\r\nRUN MODE\r\nOk\r\n")));
    EXPECT_FALSE(runs("RUN\r\na\r\nb\r\nRUN MODE\r\nOk\r\n"));
    EXPECT_FALSE(runs("RUN\r\nRUN MODES\r\nOk\r\n"));
    EXPECT_FALSE(runs("RUN\r\nOk\r\n"));
}

TEST_F(ProgramControl, AProgramErrorIsShownOnceAndTheLineIsDeleted) {
    mSerial.Handshake().Exchange("List 1");
    ScriptPlantAndRun("Error 19 in line 12: Syntax error\r\nError 2: more\r\nOk\r\n");
    mSerial.Expect("1\r\n");
    EXPECT_FALSE(mQuorin.IsProgramRunable());
    ASSERT_EQ(mDesktop.mBoxes.size(), 1U);
    EXPECT_EQ(mDesktop.mBoxes[0].text, "Printer reports Error 19 in line 12: Syntax error");
    EXPECT_EQ(mDesktop.mBoxes[0].title, "Quorin SDK");
    EXPECT_EQ(mDesktop.mBoxes[0].icon, MsgBoxIcon::Exclamation);
    EXPECT_EQ(mDesktop.mBoxes[0].buttons, MsgBoxButtons::Ok);
}

/// A person who starts something else while a box stands.
struct BusyDesktop : RecordingDesktop {
    MsgBoxResult ShowMsgBox(const MsgBox& box) override {
        EXPECT_FALSE(mQuorin->PortOpen());
        return RecordingDesktop::ShowMsgBox(box);
    }
    clsQuorin* mQuorin = nullptr;
};

TEST_F(ProgramControl, AnotherOperationIsRefusedThePortWhileTheBoxStands) {
    BusyDesktop desktop;
    clsQuorin quorin(mLink, desktop, SystemFiles());
    desktop.mQuorin = &quorin;
    mSerial.Handshake().Exchange("List 1");
    ScriptPlantAndRun("Error 19 in line 12: Syntax error\r\nOk\r\n");
    mSerial.Expect("1\r\n");
    EXPECT_FALSE(quorin.IsProgramRunable());
    EXPECT_EQ(desktop.mBoxes.size(), 1U);
}

TEST_F(ProgramControl, AProgramWithALine1IsNeverOverwritten) {
    mSerial.Handshake().Exchange("List 1", {"1 REM start"});
    EXPECT_FALSE(mQuorin.IsProgramRunable());
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
}

TEST_F(ProgramControl, ASilentCheckDeletesThePlantedLineAndTimesOut) {
    mSerial.Handshake().Exchange("List 1").Expect(Plant).Expect("RUN\r\n");
    ScriptRemoval();
    EXPECT_RAISED(mQuorin.IsProgramRunable(), ErrInputTimeout);
    EXPECT_TRUE(mSerial.ScriptDone());
}

// -- The listing on the host

TEST_F(ProgramControl, AListingIsWrittenWithoutEchoAndOk) {
    Script("LIST", {"10 REM a", "20 PRINT \"\xE4\"", "30 END"});
    mQuorin.UploadQNProgram(mFolder.File("a.lst"));
    EXPECT_EQ(mFolder.Read("a.lst"), "10 REM a\r\n20 PRINT \"\xE4\"\r\n30 END\r\n");
    Script("LIST");
    mQuorin.UploadQNProgram(mFolder.File("a.lst"));
    EXPECT_EQ(mFolder.Read("a.lst"), "");
    EXPECT_EQ(mFolder.Count(), 1U);
}

TEST_F(ProgramControl, ARefusedPortWritesNoListing) {
    RefusePort();
    mQuorin.UploadQNProgram(mFolder.File("a.lst"));
    EXPECT_EQ(mFolder.Count(), 0U);
    GrantPort();
}

TEST_F(ProgramControl, AListingThatCannotBeWrittenIsTheRuntimesError) {
    Script("LIST", {"10 REM"});
    EXPECT_RAISED(mQuorin.UploadQNProgram(mFolder.File("none/a.lst")), 76);
    Script("LIST", {"10 REM"});
    EXPECT_RAISED(mQuorin.UploadQNProgram(mFolder.File("")), 75);
}

TEST_F(ProgramControl, AListingLineThatEndsInOkIsNotItsEnd) {
    mSerial.Handshake().Expect("LIST\r\n").Reply("LIST\r\n10 REM Ok\r\n", 900);
    mSerial.Reply("20 END\r\n", 900).Reply("Ok\r\n", 900);
    mQuorin.UploadQNProgram(mFolder.File("a.lst"));
    EXPECT_EQ(mFolder.Read("a.lst"), "10 REM Ok\r\n20 END\r\n");
}

// -- Restarting

TEST_F(ProgramControl, ARebootForgetsTheDevicesAndTheModel) {
    KnowCleanDevices("R7A");
    mSerial.Handshake().Expect("REBOOT\r\n");
    mSerial.Expect("SYSVAR(18)=-1\r\n").Reply("SYSVAR(18)=-1\r\nOk\r\n", 100);
    mQuorin.Reboot();
    EXPECT_TRUE(mQuorin.PrinterDevices()->IsEmpty());
    EXPECT_FALSE(mLink.ImmediateMode());
    mLink.SetImmediateMode(true);
    ScriptIdentity("R7G");
    Script("Chdir\"c:\"");
    mQuorin.ChDir("c:");
}

TEST_F(ProgramControl, ARefusedRebootForgetsThemToo) {
    KnowCleanDevices("R7A");
    RefusePort();
    mQuorin.Reboot();
    EXPECT_TRUE(mQuorin.PrinterDevices()->IsEmpty());
    EXPECT_FALSE(mLink.ImmediateMode());
    GrantPort();
}

} // namespace
} // namespace qncomm::testing
