#include "LinkFixture.h"

#include "common/modErrorHandling.h"

#include <string>

namespace qncomm::testing {
namespace {

class LiveStateOfALink : public LinkFixture {
  protected:
    LiveStateOfALink() {
        mChanges = mLink.LiveStateEvent.Connect(
            [this](std::int16_t line, std::int16_t printer, std::int32_t generation) {
                mTold.push_back(std::string(WordFor(static_cast<enumLineState>(line))) + ", "
                                + std::string(WordFor(static_cast<enumPrinterActivity>(printer)))
                                + ", " + std::to_string(generation));
                mToldAt = mLoop.NowMs();
            });
        mSerial.OnSend(nullptr);
    }

    const LiveState& Now() const { return mLink.Live(); }
    std::string Printer() const { return std::string(WordFor(Now().printer.value)); }

    /// The printer is there and tells who it is.
    void Identify(const std::string& version, const std::string& model) {
        mLink.SetImmediateMode(true);
        mSerial.Handshake();
        mSerial.Exchange("PRINT VERSION$(0):PRINT VERSION$(1)", {version, model});
        mLink.ModelText();
    }

    void Shown(const std::string& text) {
        mSerial.Arrive(text);
        mLoop.Yield(1);
    }

    Lines TakeTold() { return std::exchange(mTold, {}); }

    Subscription mChanges;
    Lines mTold;
    std::int64_t mToldAt = 0;
};

// -- The line

TEST_F(LiveStateOfALink, KnowsNothingBeforeThePortIsOpened) {
    EXPECT_EQ(Now().line.value, LineUnknown);
    EXPECT_EQ(Now().line.from, LearntNot);
    EXPECT_EQ(Now().printer.value, PrinterUnknown);
    EXPECT_FALSE(Now().identity.value.IsKnown());
}

TEST_F(LiveStateOfALink, TellsOpenAndClosedWithTheirTime) {
    mLoop.MoveTo(5000);
    mLink.SetTerminalActive(true);
    EXPECT_EQ(Now().line.value, LineOpen);
    EXPECT_EQ(Now().line.at, 5000);
    EXPECT_EQ(Now().line.from, LearntPort);
    mLink.SetTerminalActive(false);
    EXPECT_EQ(Now().line.value, LineClosed);
    EXPECT_THAT(TakeTold(), ElementsAre("open, unknown, 1", "closed, unknown, 1"));
    EXPECT_EQ(mSerial.mSent, "") << "the state is learnt from what passes anyway";
}

TEST_F(LiveStateOfALink, ALineThatAnotherHoldsIsBusyAndSaysWho) {
    mSerial.mOnOpen = [] { throw QNError(SerialErrPortBusy, "PDQComm", "held by another"); };
    mLink.SetTerminalActive(true);
    EXPECT_EQ(Now().line.value, LineBusy);
    EXPECT_EQ(Now().lineDetail, "held by another");
    mSerial.mOnOpen = [] { throw QNError(SerialErrNoSuchPort, "PDQComm", "no such device"); };
    mLink.SetTerminalActive(false);
    mLink.SetTerminalActive(true);
    EXPECT_EQ(Now().line.value, LineClosed);
    EXPECT_EQ(Now().lineDetail, "no such device");
}

TEST_F(LiveStateOfALink, AHangUpIsToldWithin50MsWithItsReasonAndBeginsAGeneration) {
    mLink.SetTerminalActive(true);
    mLoop.Yield(700);
    mTold.clear();
    const std::int64_t before = mLoop.NowMs();
    mSerial.mWhyClosed = "the adapter was unplugged";
    mSerial.Vanish();
    mLoop.Yield(1000);
    EXPECT_THAT(TakeTold(), ElementsAre("lost, unknown, 2"));
    EXPECT_LE(mToldAt - before, 50);
    EXPECT_LE(Now().line.at - before, 50);
    EXPECT_EQ(Now().lineDetail, "the adapter was unplugged");
}

TEST_F(LiveStateOfALink, AHangUpInTheMiddleOfAReplyIsToldWithin50Ms) {
    const PortClaim claim = Claim();
    std::int64_t before = 0;
    mSerial.Expect("FILES\r\n").Reply("FILES\r\nA.PRG  12\r");
    mLoop.After(200, [&] {
        before = mLoop.NowMs();
        mSerial.Vanish();
    });
    Lines lines;
    mLink.OutputText("FILES\r\n");
    EXPECT_RAISED(mLink.InputText(lines), ErrPortNotOpen);
    EXPECT_GT(before, 0);
    EXPECT_LE(Now().line.at - before, 50);
    EXPECT_EQ(Now().line.value, LineLost);
}

// -- The printer

TEST_F(LiveStateOfALink, AReplyProvesThePrompt) {
    const PortClaim claim = Claim();
    EXPECT_EQ(Printer(), "at prompt");
    EXPECT_EQ(Now().printer.from, LearntReply);
    const std::int64_t proved = Now().printer.at;
    mTold.clear();
    mLoop.MoveTo(9000);
    const PortClaim second = Claim();
    EXPECT_GT(Now().printer.at, proved) << "each proof renews the time";
    EXPECT_THAT(mTold, IsEmpty()) << "and is no change";
}

TEST_F(LiveStateOfALink, ACommandWithoutAnyAnswerShowsASilentPrinter) {
    const PortClaim claim = Claim();
    mSerial.Expect("FILES\r\n");
    Lines lines;
    mLink.OutputText("FILES\r\n");
    EXPECT_RAISED(mLink.InputText(lines, false, 100), ErrInputTimeout);
    EXPECT_EQ(Printer(), "unknown") << "the claim was given back and the port closed";
    EXPECT_THAT(mTold, ::testing::Contains("open, silent, 1"));
}

TEST_F(LiveStateOfALink, ACommandWhoseReplyNobodyReadIsUnderWay) {
    mLink.SetTerminalActive(true);
    {
        const PortClaim claim = Claim();
        mSerial.Expect("RUN\r\n");
        mLink.OutputText("RUN\r\n");
        EXPECT_EQ(Printer(), "at prompt");
    }
    EXPECT_EQ(Printer(), "running");
    EXPECT_EQ(Now().printer.from, LearntCommand);
}

TEST_F(LiveStateOfALink, TheTerminalShowsWhatThePrinterDoes) {
    mLink.SetTerminalActive(true);
    const std::pair<const char*, const char*> steps[] = {
        {"P", "unknown"},          // the echo of a key
        {"RINT 1\r\n", "running"}, // a line was taken
        {" 1\r\nO", "running"},    //
        {"k\r\n", "at prompt"},    //
        {"RUN?", "at prompt"},     // typed, not asked
        {"\r\n", "running"},       //
        {"LABEL 1\r\nLABEL 2\r\n", "running"},
        {"Article? ", "asking"},
        {"47", "asking"}, // the echo of the answer
        {"11\r\n", "running"},
        {"Ok\r\n", "at prompt"},
        {"BOOK\r\n", "running"}, // ends in the same letters
    };
    for (const auto& [text, state] : steps) {
        Shown(text);
        EXPECT_EQ(Printer(), state) << text;
    }
    EXPECT_EQ(mSerial.mSent, "");
}

TEST_F(LiveStateOfALink, AnyTextThatARunningProgramLeavesUnfinishedIsItsQuestion) {
    mLink.SetTerminalActive(true);
    Shown("RUN\r\nLABEL 1\r\nPress a key to go on: ");
    EXPECT_EQ(Printer(), "running");
    mLoop.Yield(UnfinishedLineMs - 10);
    EXPECT_EQ(Printer(), "running") << "it may be at it still";
    mTold.clear();
    for (int turn = 0; turn < 4; ++turn)
        mLoop.Yield(UnfinishedLineMs);
    EXPECT_EQ(Printer(), "asking");
    EXPECT_EQ(Now().printer.from, LearntSilence);
    EXPECT_THAT(mTold, ElementsAre("open, asking, 1")) << "once";
    Shown("y");
    EXPECT_EQ(Printer(), "asking");
    Shown("\r\nLABEL 2\r\n");
    EXPECT_EQ(Printer(), "running");
    EXPECT_EQ(Now().printer.from, LearntText);
}

TEST_F(LiveStateOfALink, AProgramThatPrintsALineInPiecesRuns) {
    mLink.SetTerminalActive(true);
    Shown("RUN\r\n");
    for (int piece = 0; piece < 20; ++piece) {
        Shown("* ");
        mLoop.Yield(UnfinishedLineMs - 50);
        EXPECT_EQ(Printer(), "running");
    }
}

TEST_F(LiveStateOfALink, ALineThatIsTypedAtThePromptIsNoQuestionHoweverSlowlyItComes) {
    mLink.SetTerminalActive(true);
    Shown("Ok\r\n");
    for (const char* text : {"10 PRINT", " 1\r\n", "20 GO", "TO 10\r\n", "RU"}) {
        Shown(text);
        mLoop.Yield(2 * UnfinishedLineMs);
        EXPECT_EQ(Printer(), "at prompt") << text;
    }
    Shown("N\r\n");
    EXPECT_EQ(Printer(), "running");
}

TEST_F(LiveStateOfALink, NoiseSaysNothing) {
    mLink.SetTerminalActive(true);
    Shown("\x01\xFE\n\x02");
    EXPECT_EQ(Printer(), "unknown");
}

TEST_F(LiveStateOfALink, AClosedLineSaysNothingOfThePrinter) {
    { const PortClaim claim = Claim(); }
    EXPECT_EQ(Printer(), "unknown");
    EXPECT_EQ(Now().printer.from, LearntPort);
}

TEST_F(LiveStateOfALink, AnUploadShowsAPrinterThatReceives) {
    mLink.SetTerminalActive(true);
    mSerial.mTransfer = {{1, TransferStarted}, {1, TransferMoving, 5}, {1, TransferIdle}};
    mLink.BinaryUpload("/proc/self/status");
    EXPECT_THAT(mTold, ::testing::Contains("open, receiving, 1"));
}

// -- Generations

TEST_F(LiveStateOfALink, TheFirstIdentityIsLearntAndBeginsNoGeneration) {
    mLink.SetTerminalActive(true);
    Identify("4.12", "R7G");
    EXPECT_EQ(Now().identity.value.model, "R7G");
    EXPECT_EQ(Now().identity.value.version, "4.12");
    EXPECT_EQ(Now().identity.from, LearntReply);
    EXPECT_EQ(Now().generation, 1);
}

TEST_F(LiveStateOfALink, ThePrinterThatTellsTheSameAgainIsTheSame) {
    mLink.SetTerminalActive(true);
    Identify("4.12", "R7G");
    mLink.SetImmediateMode(false);
    EXPECT_FALSE(Now().identity.value.IsKnown()) << "it must be asked anew";
    Identify("4.12", "R7G");
    EXPECT_EQ(Now().generation, 1);
    mLink.SetImmediateMode(false);
    Identify("4.12", "R7C");
    EXPECT_EQ(Now().generation, 2) << "another one answered";
}

TEST_F(LiveStateOfALink, SettingsPortAndWhatItStandsForBeginGenerations) {
    EXPECT_EQ(Now().generation, 1) << "what the store held was the beginning";
    mLink.SetBaudrate(mLink.Baudrate());
    EXPECT_EQ(Now().generation, 1) << "nothing has changed";
    mLink.SetBaudrate("9600");
    EXPECT_EQ(Now().generation, 2);
    mLink.SetFlowcontrol("2");
    EXPECT_EQ(Now().generation, 3);
    mLink.SetCommport("2");
    mLink.ApplyCommSettings();
    EXPECT_EQ(Now().generation, 4);
    EXPECT_EQ(Now().place.value.port, 2);
    mSerial.mTarget = "/dev/ttyUSB7";
    mLink.SetTerminalActive(true);
    EXPECT_EQ(Now().generation, 5) << "the number stands for another device";
    EXPECT_EQ(Now().place.value.name, "/dev/ttyUSB7");
}

TEST_F(LiveStateOfALink, AStoreWithOtherSettingsIsOneChange) {
    auto other = std::make_shared<MemorySettings>();
    other->WriteValue("Settings", "Baudrate", "2400");
    other->WriteValue("Settings", "Parity", "Even");
    mTold.clear();
    mLink.SetRegSettings(other);
    EXPECT_EQ(Now().generation, 2);
    EXPECT_THAT(TakeTold(), ElementsAre("unknown, unknown, 2"));
}

TEST_F(LiveStateOfALink, ASearchThatFindsNobodyBeginsOne) {
    mSerial.OnSend([](std::string& sent) { sent.clear(); });
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_EQ(Now().generation, 2);
}

TEST_F(LiveStateOfALink, WhatWasReadFromAFormerPrinterIsRefusedWithoutAByte) {
    mLink.SetTerminalActive(true);
    Identify("4.12", "R7G");
    const std::int32_t read = Now().generation;
    mLink.RequireGeneration(read);
    mLink.SetBaudrate("9600");
    const std::string before = mSerial.mSent;
    EXPECT_RAISED_FROM(mLink.RequireGeneration(read), "1100 Datalink:RequireGeneration");
    EXPECT_EQ(mSerial.mSent, before);
}

TEST_F(LiveStateOfALink, APrinterThatIsNotKnownIsAskedBeforeAListOfItCounts) {
    mLink.SetTerminalActive(true);
    Identify("4.12", "R7G");
    const std::int32_t read = Now().generation;
    mLink.SetImmediateMode(false);
    mLink.SetImmediateMode(true);
    mSerial.Handshake().Exchange("PRINT VERSION$(0):PRINT VERSION$(1)", {"4.12", "R7C"});
    EXPECT_RAISED_FROM(mLink.RequireGeneration(read), "1100 Datalink:RequireGeneration");
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(LiveStateOfALink, ALinkInThePlaceOfAnotherCountsOn) {
    const LinkHost host{mLoop, mDesktop, mDialogs, SystemFiles(), 7};
    EXPECT_EQ(clsDataLink(host).Live().generation, 7);
}

TEST_F(LiveStateOfALink, TearDownFromAChangeLeavesNothingBehind) {
    const Subscription ending = mLink.LiveStateEvent.Connect(
        [this](std::int16_t, std::int16_t, std::int32_t) { mLink.TearDown(); });
    mLink.SetImmediateMode(true);
    EXPECT_RAISED(mLink.AcquirePort(), 91);
    EXPECT_FALSE(mSerial.PortOpen());
}

} // namespace
} // namespace qncomm::testing
