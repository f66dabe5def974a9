#include "LinkFixture.h"
#include "link/SendInPieces.h"

namespace qncomm::testing {
namespace {

class Exchange : public LinkFixture {
  protected:
    Exchange() : mClaim(Claim()) {}

    /// The reply's lines, or nothing when reading it raised.
    Lines ReadReply(std::int32_t timeout = 1000) {
        Lines lines;
        mLink.InputText(lines, false, timeout);
        return lines;
    }

    PortClaim mClaim;
};

TEST_F(Exchange, SendsTheTextAndReturnsTheNonEmptyLines) {
    mSerial.Expect("PRINT 1\r\n").Reply("PRINT 1\r\n\r\n 1\r\n   \r\nOk\r\n");
    std::string text = "PRINT 1\r\n";
    mLink.OutputText(text);
    EXPECT_EQ(text, "");
    Lines lines = {"left over"};
    EXPECT_EQ(mLink.InputText(lines), 4);
    EXPECT_THAT(lines, ElementsAre("PRINT 1", " 1", "   ", "Ok"));
}

TEST_F(Exchange, AllBytesPassUnchanged) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    mSerial.Expect(all).Reply("x\r\nOk\r\n");
    mLink.OutputText(std::string(all));
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(Exchange, TextBeyondTheTransmitBufferGoesInPieces) {
    mSerial.mDrainPerMs = 1;
    mSerial.Expect(std::string(10'000, 'x'));
    mLink.OutputText(std::string(10'000, 'x'));
    EXPECT_TRUE(mSerial.ScriptDone());
    EXPECT_EQ(mSerial.TransmitCount(), 0);
}

TEST_F(Exchange, AStuckLineTimesOutFiveSecondsAfterTheLastProgress) {
    mSerial.mDrainPerMs = 0;
    mSerial.Expect(std::string(4096, 'x'));
    std::string text(5000, 'x');
    const std::int64_t start = mLoop.NowMs();
    EXPECT_RAISED_FROM(mLink.OutputText(text), "1007 Datalink:OutputText");
    EXPECT_EQ(mLoop.NowMs() - start, 5001);
    EXPECT_EQ(text.size(), 904U) << "only what was sent is gone";
    EXPECT_EQ(mLink.UseCount(), 0);
}

TEST_F(Exchange, ALineThatDoesNotDrainTimesOutAfterTenSeconds) {
    mSerial.mDrainPerMs = 0;
    mSerial.Expect("x");
    std::string text = "x";
    const std::int64_t start = mLoop.NowMs();
    EXPECT_RAISED_FROM(mLink.OutputText(text), "1007 Datalink:OutputText");
    EXPECT_EQ(mLoop.NowMs() - start, 10'001);
    EXPECT_EQ(text, "");
    EXPECT_EQ(mLink.UseCount(), 0);
}

TEST_F(Exchange, ABlockedLineEndsALongTextAfterFiveSecondsInPiecesToo) {
    mSerial.mDrainPerMs = 0;
    mSerial.Expect(std::string(1024, 'x'));
    const std::int64_t start = mLoop.NowMs();
    EXPECT_RAISED_FROM(SendInPieces(mLink, std::string(3000, 'x')), "1007 Datalink:OutputText");
    EXPECT_EQ(mLoop.NowMs() - start, 5001);
    EXPECT_EQ(mLink.UseCount(), 0);
}

TEST_F(Exchange, ASlowLineTakesALongTextForAsLongAsItMoves) {
    mSerial.mDrainPerMs = 0.05; // 20 s for a piece
    mSerial.Expect(std::string(1024, 'x')).Expect("y");
    SendInPieces(mLink, std::string(1024, 'x') + "y");
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(Exchange, AClosedPortRaises1024AndReleases) {
    mSerial.SetPortOpen(false);
    EXPECT_RAISED_FROM(mLink.OutputText("x"), "1024 Datalink:OutputText");
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_RAISED_FROM(ReadReply(), "1024 Datalink:InputText");
}

TEST_F(Exchange, TheEchoIsAwaitedAndStaysTheFirstLine) {
    mSerial.Expect("PRINT 1\r\n")
        .Reply("PRINT", 100)
        .Reply(" 1\r\n", 100)
        .Reply("1\r\nOk\r\n", 1000);
    const std::int64_t start = mLoop.NowMs();
    mLink.OutputText("PRINT 1\r\n", true);
    EXPECT_EQ(mLoop.NowMs() - start, 200);
    EXPECT_THAT(ReadReply(2000), ElementsAre("PRINT 1", "1", "Ok"));
}

TEST_F(Exchange, AMissingEchoCostsHalfASecondAndNothingElse) {
    mSerial.Expect("X\r\n");
    const std::int64_t start = mLoop.NowMs();
    mLink.OutputText("X\r\n", true);
    EXPECT_EQ(mLoop.NowMs() - start, 501);
    EXPECT_EQ(mLink.UseCount(), 1);
}

TEST_F(Exchange, WithEventsOffTheEchoIsTakenOffThePort) {
    mSerial.SetReceiveThreshold(0);
    mSerial.Expect("X\r\n").Reply("X\r\nrest");
    mLink.OutputText("X\r\n", true);
    EXPECT_EQ(mSerial.Read(), "rest");
}

TEST_F(Exchange, ASilentPrinterTimesOutAtTheLimit) {
    const std::int64_t start = mLoop.NowMs();
    EXPECT_RAISED_FROM(ReadReply(2500), "1008 Datalink:InputText");
    EXPECT_EQ(mLoop.NowMs() - start, 2501);
    EXPECT_EQ(mLink.UseCount(), 0);
}

TEST_F(Exchange, TheLimitCountsFromWhenTheLineCanHaveCarriedTheText) {
    mSerial.mLineTimeLeft = 1500;
    const std::int64_t start = mLoop.NowMs();
    EXPECT_RAISED(ReadReply(1000), 1008);
    EXPECT_EQ(mLoop.NowMs() - start, 2501);
}

TEST_F(Exchange, AWaitForASilentPrinterWakesForNothing) {
    const std::int32_t before = mLoop.Yields();
    EXPECT_RAISED(ReadReply(45'000), 1008);
    EXPECT_LE(mLoop.Yields() - before, 2);
}

TEST_F(Exchange, TheLimitCountsFromTheLastGrowth) {
    mSerial.Expect("X\r\n").Reply("X\r\n", 900);
    for (int line = 0; line < 100; ++line)
        mSerial.Reply("a", 900);
    mSerial.Reply("\r\nOk\r\n", 900);
    mLink.OutputText("X\r\n");
    EXPECT_EQ(ReadReply(1000).size(), 3U) << "slow and steady never times out";
    const std::int64_t last = mLoop.NowMs();
    mSerial.Arrive("more", 700);
    EXPECT_RAISED(ReadReply(1000), 1008);
    EXPECT_EQ(mLoop.NowMs() - last, 700 + 1001);
}

TEST_F(Exchange, ALineFeedThatComesAloneIsGrowthToo) {
    mSerial.Expect("X\r\n");
    for (const char c : std::string("X\r\n1\r\nOk\r\n"))
        mSerial.Reply(std::string(1, c), 700);
    mLink.OutputText("X\r\n");
    EXPECT_THAT(ReadReply(1000), ElementsAre("X", "1", "Ok"));
}

TEST_F(Exchange, AListingEndsWithALineThatIsOkAlone) {
    mSerial.Expect("LIST\r\n").Reply("LIST\r\n10 REM Ok\r\n").Reply("20 PRINT \"Ok\r\n", 900);
    mSerial.Reply("30 END\r\n", 900).Reply("Ok\r\n", 900);
    mLink.OutputText("LIST\r\n");
    Lines lines;
    EXPECT_EQ(mLink.InputListing(lines), 5);
    EXPECT_EQ(lines[3], "30 END");
    mSerial.Expect("LIST\r\n").Reply("LIST\r\nOk\r\n");
    mLink.OutputText("LIST\r\n");
    EXPECT_EQ(mLink.InputListing(lines), 2) << "of no program";
    mSerial.Expect("LIST\r\n").Reply("LIST\r\nError 5: x\r\nOk\r\n");
    mLink.OutputText("LIST\r\n");
    EXPECT_RAISED(mLink.InputListing(lines), 60005);
}

TEST_F(Exchange, ACompleteReplyIsTakenHoweverLateTheLoopComesBack) {
    mSerial.Expect("X\r\n").Reply("X\r\nOk\r\n", 100);
    mLink.OutputText("X\r\n");
    mLoop.After(50, [this] { mLoop.MoveTo(mLoop.NowMs() + 600'000); });
    EXPECT_THAT(ReadReply(1000), ElementsAre("X", "Ok"));
}

TEST_F(Exchange, OkAndALineEndAnywhereEndTheReply) {
    mSerial.Arrive("line xOk\r\n");
    EXPECT_THAT(ReadReply(), ElementsAre("line xOk"));
    mSerial.Arrive("Ok\r");
    EXPECT_THAT(ReadReply(), ElementsAre("Ok"));
    mSerial.Arrive("OK\r\n");
    EXPECT_RAISED(ReadReply(100), 1008);
}

TEST_F(Exchange, WhatFollowsTheFirstOkBelongsToTheReply) {
    mSerial.Arrive("A\r\nOk\r\nB\r\nOk\r\n");
    EXPECT_THAT(ReadReply(), ElementsAre("A", "Ok", "B", "Ok"));
    EXPECT_RAISED(ReadReply(10), 1008) << "nothing is kept for the next read";
}

TEST_F(Exchange, AFailedReadLeavesNothingForTheNextReply) {
    mSerial.Arrive("half a reply\r\n");
    EXPECT_RAISED(ReadReply(10), 1008);
    mSerial.SetPortOpen(true);
    mSerial.Arrive("Y\r\nOk\r\n");
    EXPECT_THAT(ReadReply(), ElementsAre("Y", "Ok"));
}

TEST_F(Exchange, ALongReplyArrivesWhole) {
    std::string reply = "FILES\r\n";
    for (int row = 0; row < 10'000; ++row)
        reply += "NAME" + std::to_string(row) + "   1\r\n";
    for (std::size_t at = 0; at < reply.size(); at += 4096)
        mSerial.Arrive(reply.substr(at, 4096), 1);
    mSerial.Arrive("Ok\r\n", 2);
    EXPECT_EQ(ReadReply().size(), 10'002U);
}

TEST_F(Exchange, AReplyBeyond16MiBIsAProtocolError) {
    for (int piece = 0; piece < 17; ++piece)
        mSerial.Arrive(std::string(1 << 20, 'x'), piece + 1);
    EXPECT_RAISED_FROM(ReadReply(), "1000 Datalink:InputText");
    EXPECT_EQ(mLink.UseCount(), 0);
    mSerial.SetPortOpen(true);
    mSerial.Arrive("Y\r\nOk\r\n", 1);
    EXPECT_THAT(ReadReply(), ElementsAre("Y", "Ok"));
}

TEST_F(Exchange, AReplyOf16MiBArrivesWhole) {
    const std::string end = "\r\nOk\r\n";
    for (int piece = 0; piece < 15; ++piece)
        mSerial.Arrive(std::string(1 << 20, 'x'), 1);
    mSerial.Arrive(std::string((1 << 20) - end.size(), 'x') + end, 1);
    const Lines reply = ReadReply();
    ASSERT_EQ(reply.size(), 2U);
    EXPECT_EQ(reply[0].size() + end.size(), std::size_t{16} << 20U);
}

TEST_F(Exchange, AReplyOfMoreLinesThanAMillionAndSomeIsAProtocolError) {
    const auto lines = [](int count) {
        std::string text;
        for (int i = 0; i < count; ++i)
            text += "x\r\n";
        return text;
    };
    mSerial.Arrive(lines((1 << 20) - 1) + "Ok\r\n");
    EXPECT_EQ(ReadReply().size(), std::size_t{1} << 20U);
    mSerial.Arrive(lines(1 << 20) + "Ok\r\n");
    EXPECT_RAISED_FROM(ReadReply(), "1000 Datalink:InputText");
    mSerial.SetPortOpen(true);
    mSerial.Arrive("Y\r\nOk\r\n", 1);
    EXPECT_THAT(ReadReply(), ElementsAre("Y", "Ok"));
}

TEST_F(Exchange, NoiseAndZerosAreDataUntilTheLimit) {
    mSerial.Arrive(std::string("\0\x1A\xFF\r\nOk\r\n", 9));
    EXPECT_THAT(ReadReply(), ElementsAre(std::string("\0\x1A\xFF", 3), "Ok"));
}

// -- A reply belongs to its command

TEST_F(Exchange, WhatStandsBeforeTheEchoBelongsToNobody) {
    mSerial.Expect("PRINT 2\r\n").Reply("ILES\r\nA.PRG  10\r\nOk\r\nPRINT 2\r\n2\r\nOk\r\n");
    mLink.OutputText("PRINT 2\r\n");
    EXPECT_THAT(ReadReply(), ElementsAre("PRINT 2", "2", "Ok"));
}

TEST_F(Exchange, NoiseBeforeTheEchoOnItsLineIsDropped) {
    mSerial.Expect("PRINT 2\r\n").Reply("\xFE?\x01q").Reply("PRINT 2\r\n2\r\nOk\r\n", 5);
    mLink.OutputText("PRINT 2\r\n");
    EXPECT_THAT(ReadReply(), ElementsAre("PRINT 2", "2", "Ok"));
}

TEST_F(Exchange, AnOkOfAnotherReplyEndsNoWait) {
    mSerial.Expect("PRINT 2\r\n").Reply("1\r\nOk\r\n", 100).Reply("PRINT 2\r\n", 900);
    mSerial.Reply("2\r\nOk\r\n", 900);
    mLink.OutputText("PRINT 2\r\n");
    EXPECT_THAT(ReadReply(), ElementsAre("PRINT 2", "2", "Ok"));
}

TEST_F(Exchange, ACommandThatEndsInOkIsNoReply) {
    mSerial.Expect("REM Ok\r\n").Reply("REM Ok\r\n").Reply("Error 5: x\r\nOk\r\n", 200);
    mLink.OutputText("REM Ok\r\n");
    EXPECT_RAISED(ReadReply(), 60005);
}

TEST_F(Exchange, AReplyWithoutTheEchoIsAProtocolErrorAtTheLimit) {
    mSerial.Expect("PRINT 2\r\n").Reply("1\r\nOk\r\n", 300);
    mLink.OutputText("PRINT 2\r\n");
    const std::int64_t start = mLoop.NowMs();
    EXPECT_RAISED_FROM(ReadReply(), "1000 Datalink:InputText");
    EXPECT_EQ(mLoop.NowMs() - start, 300 + 1001);
    EXPECT_EQ(mLink.UseCount(), 0);
}

TEST_F(Exchange, TheEchoIsKnownWithoutTheEighthBitAndOfALongLineByItsBeginning) {
    mSerial.Expect("KILL \"gr\xF6\xDF\x85\"\r\n").Reply("KILL \"grv_\"\r\nOk\r\n");
    mLink.OutputText("KILL \"gr\xF6\xDF\x85\"\r\n");
    EXPECT_EQ(ReadReply().size(), 2U);
    const std::string line = "PRINT \"" + std::string(500, 'x') + "\"";
    mSerial.Expect(line + "\r\n").Reply(line.substr(0, 255) + "\r\nError 9: long\r\nOk\r\n");
    mLink.OutputText(line + "\r\n");
    EXPECT_RAISED(ReadReply(), 60009);
}

TEST_F(Exchange, OfALineSentInPiecesAndWhatFollowsItTheLineIsEchoed) {
    mSerial.Expect("IMAGE LOAD \"A\",4\r").Reply("Ok\r\nIMAGE LOAD \"A\",4\r\n");
    mSerial.Expect("a\rb\r").Reply("Ok\r\n", 50);
    mLink.OutputText("IMAGE LOAD ");
    mLink.OutputText("\"A\",4\r");
    mLink.OutputText("a\rb\r");
    EXPECT_THAT(ReadReply(), ElementsAre("IMAGE LOAD \"A\",4", "Ok"));
}

/// A printer that works through its commands one after another and takes long for the first.
class LateReplies : public LinkFixture {
  protected:
    LateReplies() {
        mLink.SetImmediateMode(true);
        mSerial.OnSend([this](std::string& sent) {
            for (std::size_t end = 0; (end = sent.find("\r\n")) != std::string::npos;) {
                Obey(sent.substr(0, end));
                sent.erase(0, end + 2);
            }
        });
    }

    void Obey(const std::string& line) {
        const bool handshake = line.starts_with("PRINT SYSVAR");
        const std::string answer = handshake ? "-1\r\n2\r\n" : "the answer to " + line + "\r\n";
        mFreeAt = std::max(mFreeAt, mLoop.NowMs()) + (line == "SLOW" ? mSlowMs : 5);
        const auto left = static_cast<std::int32_t>(mFreeAt - mLoop.NowMs());
        if (mEchoesAtOnce) mSerial.Arrive(line + "\r\n");
        mSerial.Arrive((mEchoesAtOnce ? "" : line + "\r\n") + answer + "Ok\r\n", left);
    }

    std::string Ask(const std::string& line) {
        const PortClaim claim = mLink.AcquirePort();
        mLink.OutputText(line + "\r\n");
        Lines lines;
        mLink.InputText(lines);
        return lines.at(1);
    }

    std::int32_t mSlowMs = 1500;
    bool mEchoesAtOnce = false;
    std::int64_t mFreeAt = 0;
};

TEST_F(LateReplies, AreNotTakenForThoseOfTheCommandsThatFollow) {
    mLink.SetTerminalActive(true); // keeps the port open, and with it what arrives
    for (const bool atOnce : {false, true}) {
        mEchoesAtOnce = atOnce;
        EXPECT_RAISED(Ask("SLOW"), 1008);
        for (const char* line : {"A", "B", "A", "A"})
            EXPECT_EQ(Ask(line), std::string("the answer to ") + line) << atOnce;
    }
}

TEST_F(LateReplies, OfAPrinterThatStaysDeafForSecondsRaiseUntilItIsBack) {
    mLink.SetTerminalActive(true);
    mSlowMs = 3500;
    EXPECT_RAISED(Ask("SLOW"), 1008);
    EXPECT_RAISED(Ask("A"), 1008);
    EXPECT_RAISED(Ask("A"), 1008);
    EXPECT_EQ(Ask("A"), "the answer to A");
    EXPECT_EQ(Ask("B"), "the answer to B");
    EXPECT_EQ(mLink.UseCount(), 1) << "the terminal's";
}

TEST_F(LateReplies, OfATimedOutCommandAreNotTheOnesOfTheSameAskedAgain) {
    mLink.SetTerminalActive(true);
    EXPECT_RAISED(Ask("SLOW"), 1008);
    mSlowMs = 100;
    const std::int64_t start = mLoop.NowMs();
    EXPECT_EQ(Ask("SLOW"), "the answer to SLOW");
    EXPECT_GE(mLoop.NowMs() - start, 500 + 100) << "its own reply, not the late one";
}

TEST_F(LateReplies, ADamagedEchoDoesNotSpoilTheHandshake) {
    mSerial.OnSend([this](std::string& sent) {
        sent[5] = '?';
        mSerial.Arrive(std::exchange(sent, {}) + "-1\r\n2\r\nOk\r\n", 5);
    });
    const std::int64_t start = mLoop.NowMs();
    EXPECT_TRUE(mLink.AcquirePort());
    EXPECT_EQ(mLoop.NowMs() - start, 5);
}

TEST_F(LateReplies, OfAPrinterWhoseEchoIsOffDoNotSpoilItsHandshake) {
    mSerial.OnSend([this](std::string& sent) {
        sent.clear();
        mSerial.Arrive("8\r\n2\r\nOk\r\n", 5);
    });
    const std::int64_t start = mLoop.NowMs();
    EXPECT_TRUE(mLink.AcquirePort());
    EXPECT_EQ(mLoop.NowMs() - start, 5);
}

// -- Printer errors

struct ErrorLine {
    const char* line;
    int number; ///< 0: raises nothing
    const char* description;
};

class ErrorReply : public LinkFixture, public ::testing::WithParamInterface<ErrorLine> {};

TEST_P(ErrorReply, IsRaisedAs60000AndItsNumber) {
    const PortClaim claim = Claim();
    mSerial.Arrive(std::string("X\r\n") + GetParam().line + "\r\nOk\r\n");
    Lines lines;
    try {
        mLink.InputText(lines);
        EXPECT_EQ(GetParam().number, 0);
        EXPECT_EQ(mLink.UseCount(), 1);
    } catch (const QNError& error) {
        EXPECT_EQ(error.Number(), GetParam().number);
        EXPECT_EQ(error.Description(), GetParam().description);
        EXPECT_EQ(error.Source(), "clsDatalink:GetPrinterError");
        EXPECT_EQ(mLink.UseCount(), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Lines, ErrorReply,
    ::testing::Values(
        ErrorLine{"Error 1022 in line 10: text", 61022, "text (List line 10)"},
        ErrorLine{"Error 5:  bad  ", 60005, "bad"}, ErrorLine{"  Error 5: x", 60005, "x"},
        ErrorLine{"found Error 7: y", 60007, "y"}, ErrorLine{"Error 5 in line 0: x", 60005, "x"},
        ErrorLine{"a:b Error 5 in line 9: x", 60005, "x"},
        ErrorLine{"Error 5: seen in line 7", 60005, "seen in line 7"},
        ErrorLine{"Error 0: x", 0, ""}, ErrorLine{"Error:5: x", 0, ""},
        ErrorLine{"Error abc: x", 0, ""}, ErrorLine{"error 5: x", 0, ""},
        ErrorLine{"Error 5 without colon", 0, ""}, ErrorLine{"12345 FOR I=1 TO 9:NEXT", 0, ""}));

TEST_F(Exchange, APrinterErrorBeyond32BitsOverflows) {
    mSerial.Arrive("X\r\nError 2147483647: x\r\nOk\r\n");
    EXPECT_RAISED(ReadReply(), 6);
    EXPECT_EQ(mLink.UseCount(), 0);
}

TEST_F(Exchange, OnlyTheLineBeforeTheLastIsLookedAt) {
    mSerial.Arrive("X\r\nError 5: x\r\nfine\r\nOk\r\n");
    EXPECT_EQ(ReadReply().size(), 4U);
}

TEST_F(Exchange, ALoneOkHasNoLineToLookAtAndTwoLinesHaveTheEcho) {
    mSerial.Arrive("Ok\r\n");
    EXPECT_EQ(ReadReply().size(), 1U);
    mSerial.Arrive("PRINT \"Error 9: x\"\r\nOk\r\n");
    EXPECT_RAISED(ReadReply(), 60009);
}

TEST_F(Exchange, TheErrorCheckCanBeLeftOut) {
    mSerial.Arrive("X\r\nError 5: x\r\nOk\r\n");
    Lines lines;
    EXPECT_EQ(mLink.InputText(lines, true), 3);
}

// -- The waits that take bytes off the port

TEST_F(Exchange, WaitForEchoLineComparesTheNextLine) {
    mSerial.SetReceiveThreshold(0);
    mSerial.Arrive("TRANSFER K\r\nx", 20);
    EXPECT_TRUE(mLink.WaitForEchoLine("TRANSFER K\r\n"));
    mSerial.Arrive("\r\nother\r\n", 20);
    EXPECT_FALSE(mLink.WaitForEchoLine("TRANSFER K\r\n"));
}

TEST_F(Exchange, WaitForEchoLineTimesOutWithoutYielding) {
    const std::int32_t yields = mLoop.Yields();
    const std::int64_t start = mLoop.NowMs();
    EXPECT_FALSE(mLink.WaitForEchoLine("X\r\n"));
    EXPECT_EQ(mLoop.NowMs() - start, 500);
    EXPECT_EQ(mLoop.Yields(), yields);
}

TEST_F(Exchange, WaitForOkAccumulatesAndRestartsOnEachChunk) {
    mSerial.SetReceiveThreshold(0);
    const std::int32_t yields = mLoop.Yields();
    for (int chunk = 1; chunk <= 5; ++chunk)
        mSerial.Arrive("x", 400 * chunk);
    mSerial.Arrive("O", 2300);
    mSerial.Arrive("k\r", 2600);
    EXPECT_TRUE(mLink.WaitForOk());
    EXPECT_EQ(mLoop.Yields(), yields);
    mSerial.Arrive("nothing of the sort", 100);
    const std::int64_t start = mLoop.NowMs();
    EXPECT_FALSE(mLink.WaitForOk());
    EXPECT_EQ(mLoop.NowMs() - start, 601);
}

} // namespace
} // namespace qncomm::testing
