// Files that travel between the printer and a host by Kermit and ZModem.
#include "PrinterTransferRig.h"

namespace qncomm::testing {
namespace {

using qncomm::testing::RandomBytes;

std::string EveryByte() {
    std::string bytes;
    for (int round = 0; round < 3; ++round) {
        for (int value = 0; value < 256; ++value)
            bytes += static_cast<char>(value);
    }
    return bytes;
}

/// Puts a file on the printer without a protocol.
void LoadFile(PrinterRig& rig, const std::string& name, const std::string& content) {
    rig.Send("FILE& LOAD \"" + name + "\"," + std::to_string(content.size()) + "\r" + content);
    EXPECT_TRUE(rig.Read().ends_with("\nOk\r\n"));
}

bool HasFile(PrinterRig& rig, const std::string& name) {
    return rig.Ask("FILES").find(name + "  ") != std::string::npos;
}

/// The printer said this at the end, and no other command was answered before it.
void ExpectEnd(const PrinterTransferRig& rig, const std::string& end) {
    const std::string& tail = rig.Tail();
    EXPECT_TRUE(tail.ends_with(end)) << tail;
    EXPECT_EQ(tail.find("Ok\r\n"), tail.size() - 4) << tail;
}

class Transfer : public ::testing::TestWithParam<const Protocol*> {
  protected:
    const Protocol& Way() const { return *GetParam(); }
    std::string Statement(const std::string& arguments) const {
        return std::string("TRANSFER ") + Way().letter + " " + arguments;
    }
};

INSTANTIATE_TEST_SUITE_P(Both, Transfer, ::testing::Values(&kermit, &zmodem), [](const auto& way) {
    return way.param == &kermit ? "Kermit" : "ZModem";
});

TEST_P(Transfer, SendsAFileAsItIsStored) {
    for (const std::string& content :
         {std::string(), std::string("x"), EveryByte(), RandomBytes(100'000, 1)}) {
        PrinterTransferRig rig;
        LoadFile(rig, "F.BIN", content);
        EXPECT_EQ(rig.Download(Way(), "F.BIN"), Outcome::Success);
        ASSERT_EQ(rig.sink.Whole().size(), 1U);
        EXPECT_EQ(rig.sink.Whole()[0].name, "F.BIN");
        EXPECT_TRUE(rig.sink.Whole()[0].content == content) << content.size();
        EXPECT_EQ(rig.Tail(), "Ok\r\n");
    }
}

TEST_P(Transfer, StoresWhatTheHostSends) {
    for (const std::string& content :
         {std::string(), std::string("x"), EveryByte(), RandomBytes(100'000, 2)}) {
        PrinterTransferRig rig;
        EXPECT_EQ(rig.Upload(Way(), {"NEW.BIN", content}), Outcome::Success);
        EXPECT_EQ(rig.Tail(), "Ok\r\n");
        EXPECT_TRUE(HasFile(rig, "NEW.BIN"));
        // Sending is proven by itself, so what comes back is what was stored.
        EXPECT_EQ(rig.Download(Way(), "NEW.BIN"), Outcome::Success);
        ASSERT_EQ(rig.sink.Whole().size(), 1U);
        EXPECT_TRUE(rig.sink.Whole()[0].content == content) << content.size();
    }
}

TEST_P(Transfer, TakesItsTimeOnAPacedLine) {
    PrinterTransferRig rig("R7G?baud=115200&format=n,8,1&paced=on");
    const std::string content = RandomBytes(100'000, 3);
    const Micros start = rig.Now();
    EXPECT_EQ(rig.Upload(Way(), {"F", content}), Outcome::Success);
    EXPECT_EQ(rig.Tail(), "Ok\r\n");
    EXPECT_GE(rig.Now() - start, 100'000LL * 1'000'000 / 11'520);
    EXPECT_EQ(rig.Download(Way(), "F"), Outcome::Success);
    ASSERT_EQ(rig.sink.Whole().size(), 1U);
    EXPECT_TRUE(rig.sink.Whole()[0].content == content);
    EXPECT_EQ(rig.Tail(), "Ok\r\n");
}

TEST_P(Transfer, RepairsWhatTheLineDamages) {
    for (int seed = 1; seed <= 5; ++seed) {
        const std::string fault = "0.0005,seed=" + std::to_string(seed);
        PrinterTransferRig rig("R7G?baud=115200&paced=on&lost=" + fault + "&flipped=" + fault);
        const std::string content = RandomBytes(20'000, 4);
        EXPECT_EQ(rig.Upload(Way(), {"F", content}), Outcome::Success) << seed;
        rig.Send("\r");
        rig.Read(10'000'000);
        EXPECT_EQ(rig.Download(Way(), "F"), Outcome::Success) << seed;
        ASSERT_EQ(rig.sink.Whole().size(), 1U) << seed;
        EXPECT_TRUE(rig.sink.Whole()[0].content == content) << seed;
    }
}

TEST_P(Transfer, CancelledByTheSendingHostLeavesNoFile) {
    PrinterTransferRig rig("R7G?baud=115200&paced=on");
    rig.onStep = [&rig](TransferEngine& engine) {
        if (engine.Progress().bytes > 20'000) engine.Cancel(std::chrono::microseconds(rig.Now()));
    };
    EXPECT_EQ(rig.Upload(Way(), {"F", RandomBytes(100'000, 5)}), Outcome::CancelledHere);
    ExpectEnd(rig, "Error 1051: File transfer cancelled\r\nOk\r\n");
    rig.Send("KILL \"F\"\r");
    EXPECT_EQ(rig.Read(1'000'000), "KILL \"F\"\r\nError 1022: File not found\r\nOk\r\n");
}

TEST_P(Transfer, CancelledByTheReceivingHostEndsAtThePrompt) {
    PrinterTransferRig rig("R7G?baud=115200&paced=on");
    EXPECT_EQ(rig.Upload(Way(), {"F", RandomBytes(100'000, 6)}), Outcome::Success);
    rig.onStep = [&rig](TransferEngine& engine) {
        if (engine.Progress().bytes > 20'000) engine.Cancel(std::chrono::microseconds(rig.Now()));
    };
    EXPECT_EQ(rig.Download(Way(), "F"), Outcome::CancelledHere);
    // What was under way before the printer heard of it comes first; that is no more than its line
    // takes.
    ExpectEnd(rig, "Error 1051: File transfer cancelled\r\nOk\r\n");
    EXPECT_LT(rig.Tail().size(), 1000U);
    rig.Send("PRINT 6*7\r");
    EXPECT_EQ(rig.Read(1'000'000), "PRINT 6*7\r\n42\r\nOk\r\n");
}

TEST_P(Transfer, ThatDoesNotFitIsRefusedAndTheOldFileStays) {
    PrinterTransferRig rig("R7A?capacity=1000");
    const std::string old(100, 'o');
    LoadFile(rig, "F", old);
    EXPECT_NE(rig.Upload(Way(), {"F", RandomBytes(2000, 7)}), Outcome::Success);
    EXPECT_EQ(rig.Tail(), "Error 1019: Device full\r\nOk\r\n");
    EXPECT_EQ(rig.Download(Way(), "F"), Outcome::Success);
    ASSERT_EQ(rig.sink.Whole().size(), 1U);
    EXPECT_EQ(rig.sink.Whole()[0].content, old);
}

TEST_P(Transfer, GoesToTheCurrentDeviceUnderTheLastPartOfItsName) {
    PrinterTransferRig rig;
    rig.Begin("CHDIR\"tmp:\":" + Statement("\"R\""));
    const auto sender = Way().sender();
    MemorySource source({MemoryFile{"c:/labels/PRICE LIST.DAT", "apples"}});
    rig.Run(*sender, &source, nullptr);
    EXPECT_EQ(rig.Tail(), "Ok\r\n");
    EXPECT_TRUE(HasFile(rig, "PRICE LIST.DAT"));
    EXPECT_EQ(rig.Line("KILL \"c:PRICE LIST.DAT\""), "Error 1022: File not found");
    EXPECT_TRUE(rig.Lines("KILL \"tmp:PRICE LIST.DAT\"").empty());
}

TEST_P(Transfer, BringsSeveralFilesInOneSession) {
    PrinterTransferRig rig;
    MemorySource source({{"A.DAT", "first"}, {"B.DAT", ""}, {"C.DAT", EveryByte()}});
    EXPECT_EQ(rig.Upload(Way(), source), Outcome::Success);
    EXPECT_EQ(rig.Tail(), "Ok\r\n");
    for (const std::string name : {"A.DAT", "B.DAT", "C.DAT"})
        EXPECT_TRUE(HasFile(rig, name)) << name;
}

TEST_P(Transfer, IsRefusedByAWriteProtectedDeviceAndForABadName) {
    PrinterTransferRig rig;
    EXPECT_NE(rig.Upload(Way(), {std::string(41, 'N'), "x"}), Outcome::Success);
    EXPECT_EQ(rig.Tail(), "Error 1021: Bad file name\r\nOk\r\n");
    rig.Ask("CHDIR \"rom:\"");
    EXPECT_NE(rig.Upload(Way(), {"F", "x"}), Outcome::Success);
    EXPECT_EQ(rig.Tail(), "Error 1020: Device is write protected\r\nOk\r\n");
}

TEST_P(Transfer, OfAMissingFileFailsBeforeAnythingGoesOut) {
    PrinterTransferRig rig;
    EXPECT_EQ(rig.Line(Statement("\"S\",\"NONE\"")), "Error 1022: File not found");
    EXPECT_EQ(rig.Line(Statement("\"S\",\"disk9:F\"")), "Error 1018: Device not found");
}

TEST_P(Transfer, TakesRAloneOrSAndAName) {
    PrinterTransferRig rig;
    EXPECT_EQ(rig.Line(Statement("\"X\"")), "Error 5: Illegal argument");
    EXPECT_EQ(rig.Line(Statement("\"S\"")), "Error 5: Illegal argument");
    EXPECT_EQ(rig.Line(Statement("\"R\",\"F\"")), "Error 5: Illegal argument");
    EXPECT_EQ(rig.Line(Statement("")), "Error 19: Syntax error");
    EXPECT_EQ(rig.Line("TRANSFER X \"R\""), "Error 19: Syntax error");
}

TEST_P(Transfer, ToWhichNobodyAnswersFailsAndRestsInBetween) {
    PrinterTransferRig rig;
    LoadFile(rig, "F", "x");
    for (const std::string arguments : {"\"R\"", "\"S\",\"F\""}) {
        rig.Begin(Statement(arguments));
        rig.Read(1'000'000);
        const auto due = rig.Printer().NextDue();
        ASSERT_TRUE(due.has_value());
        EXPECT_GT(*due, rig.Now());
        EXPECT_TRUE(rig.Read(60'000'000).ends_with("Error 1050: File transfer failed\r\nOk\r\n"))
            << arguments;
        EXPECT_EQ(rig.Line("PRINT 1"), "1");
    }
}

TEST_P(Transfer, EndsWithABreak) {
    PrinterTransferRig rig("R7G?baud=115200&paced=on");
    bool broken = false;
    rig.onStep = [&](TransferEngine& engine) {
        if (broken || engine.Progress().bytes <= 20'000) return;
        broken = true;
        rig.Printer().DiscardFromHost(rig.Now());
        rig.Printer().Break(rig.Now());
    };
    EXPECT_EQ(rig.Upload(Way(), {"F", RandomBytes(100'000, 8)}), Outcome::CancelledThere);
    EXPECT_TRUE(rig.Tail().starts_with("Break\r\nOk\r\n")) << rig.Tail();
    rig.Send("\r");
    rig.Read(1'000'000);
    rig.Send("KILL \"F\"\r");
    EXPECT_EQ(rig.Read(1'000'000), "KILL \"F\"\r\nError 1022: File not found\r\nOk\r\n");
}

TEST_P(Transfer, LeavesWhatComesBehindItsEndToTheConsole) {
    PrinterTransferRig rig;
    rig.behindTheEnd = "PRINT 6*7\r";
    EXPECT_EQ(rig.Upload(Way(), {"F", "x"}), Outcome::Success);
    EXPECT_EQ(rig.Tail(), "Ok\r\nPRINT 6*7\r\n42\r\nOk\r\n");
}

TEST_P(Transfer, RunsInAProgramThatTrapsItsFailure) {
    PrinterTransferRig rig("R7A?capacity=2000");
    rig.Send("10 ON ERROR GOTO 50\r20 " + Statement("\"R\"")
             + "\r30 PRINT \"STORED\"\r40 END\r50 PRINT \"E\";ERR\r60 END\r");
    rig.Read();
    const auto run = [&](const MemoryFile& file) {
        rig.Begin("RUN");
        const auto sender = Way().sender();
        MemorySource source({file});
        rig.Run(*sender, &source, nullptr);
        return rig.Tail();
    };
    EXPECT_EQ(run({"F", "x"}), "STORED\r\nOk\r\n");
    EXPECT_EQ(run({"G", std::string(5000, 'x')}), "E1019\r\nOk\r\n");
}

TEST(DeviceThatFills, EndsTheTransferAndWhatIsUnderWayIsNoCommand) {
    PrinterTransferRig rig("R7A?capacity=5000&baud=115200&paced=on");
    EXPECT_NE(
        rig.Upload(kermitWithoutSize, {"F", std::string(1000, '\r') + RandomBytes(50'000, 9)}),
        Outcome::Success);
    ExpectEnd(rig, "Error 1019: Device full\r\nOk\r\n");
    rig.Send("KILL \"F\"\r");
    EXPECT_EQ(rig.Read(1'000'000), "KILL \"F\"\r\nError 1022: File not found\r\nOk\r\n");
}

TEST(SevenBitLine, CarriesEveryByteByKermitWhetherOrNotTheHostWasTold) {
    for (const Protocol* way : {&kermitOfSevenBits, &kermit}) {
        PrinterTransferRig rig("R7G?format=n,7,2");
        const std::string content = EveryByte();
        EXPECT_EQ(rig.Upload(*way, {"F", content}), Outcome::Success);
        EXPECT_EQ(rig.Tail(), "Ok\r\n");
        EXPECT_EQ(rig.Download(*way, "F"), Outcome::Success);
        ASSERT_EQ(rig.sink.Whole().size(), 1U);
        EXPECT_TRUE(rig.sink.Whole()[0].content == content);
    }
}

TEST(SevenBitLine, IsNotForZModem) {
    PrinterTransferRig rig("R7G?format=n,7,2");
    EXPECT_EQ(rig.Line("TRANSFER Z \"R\""), "Error 1052: Line carries seven bits only");
}

TEST(TextByKermit, IsStoredWithTheLineEndsThatTravel) {
    PrinterTransferRig rig;
    MemorySource source({MemoryFile{"T", "one\ntwo\n"}});
    source.text = true;
    EXPECT_EQ(rig.Upload(kermit, source), Outcome::Success);
    EXPECT_EQ(rig.Download(kermit, "T"), Outcome::Success);
    ASSERT_EQ(rig.sink.Whole().size(), 1U);
    EXPECT_EQ(rig.sink.Whole()[0].content, "one\r\ntwo\r\n");
}

} // namespace
} // namespace qncomm::testing
