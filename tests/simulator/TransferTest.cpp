// Files that travel between the printer and a host by Kermit and ZModem.
#include "TransferBench.h"

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
void LoadFile(PrinterBench& bench, const std::string& name, const std::string& content) {
    bench.Send("FILE& LOAD \"" + name + "\"," + std::to_string(content.size()) + "\r" + content);
    EXPECT_TRUE(bench.Read().ends_with("\nOk\r\n"));
}

bool HasFile(PrinterBench& bench, const std::string& name) {
    return bench.Ask("FILES").find(name + "  ") != std::string::npos;
}

/// The printer said this at the end, and no other command was answered before it.
void ExpectEnd(const TransferBench& bench, const std::string& end) {
    const std::string& tail = bench.Tail();
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
        TransferBench bench;
        LoadFile(bench, "F.BIN", content);
        EXPECT_EQ(bench.Download(Way(), "F.BIN"), Outcome::Success);
        ASSERT_EQ(bench.sink.Whole().size(), 1U);
        EXPECT_EQ(bench.sink.Whole()[0].name, "F.BIN");
        EXPECT_TRUE(bench.sink.Whole()[0].content == content) << content.size();
        EXPECT_EQ(bench.Tail(), "Ok\r\n");
    }
}

TEST_P(Transfer, StoresWhatTheHostSends) {
    for (const std::string& content :
         {std::string(), std::string("x"), EveryByte(), RandomBytes(100'000, 2)}) {
        TransferBench bench;
        EXPECT_EQ(bench.Upload(Way(), {"NEW.BIN", content}), Outcome::Success);
        EXPECT_EQ(bench.Tail(), "Ok\r\n");
        EXPECT_TRUE(HasFile(bench, "NEW.BIN"));
        // Sending is proven by itself, so what comes back is what was stored.
        EXPECT_EQ(bench.Download(Way(), "NEW.BIN"), Outcome::Success);
        ASSERT_EQ(bench.sink.Whole().size(), 1U);
        EXPECT_TRUE(bench.sink.Whole()[0].content == content) << content.size();
    }
}

TEST_P(Transfer, TakesItsTimeOnAPacedLine) {
    TransferBench bench("R7G?baud=115200&format=n,8,1&paced=on");
    const std::string content = RandomBytes(100'000, 3);
    const Micros start = bench.Now();
    EXPECT_EQ(bench.Upload(Way(), {"F", content}), Outcome::Success);
    EXPECT_EQ(bench.Tail(), "Ok\r\n");
    EXPECT_GE(bench.Now() - start, 100'000LL * 1'000'000 / 11'520);
    EXPECT_EQ(bench.Download(Way(), "F"), Outcome::Success);
    ASSERT_EQ(bench.sink.Whole().size(), 1U);
    EXPECT_TRUE(bench.sink.Whole()[0].content == content);
    EXPECT_EQ(bench.Tail(), "Ok\r\n");
}

TEST_P(Transfer, RepairsWhatTheLineDamages) {
    for (int seed = 1; seed <= 5; ++seed) {
        const std::string fault = "0.0005,seed=" + std::to_string(seed);
        TransferBench bench("R7G?baud=115200&paced=on&lost=" + fault + "&flipped=" + fault);
        const std::string content = RandomBytes(20'000, 4);
        EXPECT_EQ(bench.Upload(Way(), {"F", content}), Outcome::Success) << seed;
        bench.Send("\r");
        bench.Read(10'000'000);
        EXPECT_EQ(bench.Download(Way(), "F"), Outcome::Success) << seed;
        ASSERT_EQ(bench.sink.Whole().size(), 1U) << seed;
        EXPECT_TRUE(bench.sink.Whole()[0].content == content) << seed;
    }
}

TEST_P(Transfer, CancelledByTheSendingHostLeavesNoFile) {
    TransferBench bench("R7G?baud=115200&paced=on");
    bench.onStep = [&bench](TransferEngine& engine) {
        if (engine.Progress().bytes > 20'000) engine.Cancel(std::chrono::microseconds(bench.Now()));
    };
    EXPECT_EQ(bench.Upload(Way(), {"F", RandomBytes(100'000, 5)}), Outcome::CancelledHere);
    ExpectEnd(bench, "Error 1051: File transfer cancelled\r\nOk\r\n");
    bench.Send("KILL \"F\"\r");
    EXPECT_EQ(bench.Read(1'000'000), "KILL \"F\"\r\nError 1022: File not found\r\nOk\r\n");
}

TEST_P(Transfer, CancelledByTheReceivingHostEndsAtThePrompt) {
    TransferBench bench("R7G?baud=115200&paced=on");
    EXPECT_EQ(bench.Upload(Way(), {"F", RandomBytes(100'000, 6)}), Outcome::Success);
    bench.onStep = [&bench](TransferEngine& engine) {
        if (engine.Progress().bytes > 20'000) engine.Cancel(std::chrono::microseconds(bench.Now()));
    };
    EXPECT_EQ(bench.Download(Way(), "F"), Outcome::CancelledHere);
    // What was under way before the printer heard of it comes first; that is no more than its line
    // takes.
    ExpectEnd(bench, "Error 1051: File transfer cancelled\r\nOk\r\n");
    EXPECT_LT(bench.Tail().size(), 1000U);
    bench.Send("PRINT 6*7\r");
    EXPECT_EQ(bench.Read(1'000'000), "PRINT 6*7\r\n42\r\nOk\r\n");
}

TEST_P(Transfer, ThatDoesNotFitIsRefusedAndTheOldFileStays) {
    TransferBench bench("R7A?capacity=1000");
    const std::string old(100, 'o');
    LoadFile(bench, "F", old);
    EXPECT_NE(bench.Upload(Way(), {"F", RandomBytes(2000, 7)}), Outcome::Success);
    EXPECT_EQ(bench.Tail(), "Error 1019: Device full\r\nOk\r\n");
    EXPECT_EQ(bench.Download(Way(), "F"), Outcome::Success);
    ASSERT_EQ(bench.sink.Whole().size(), 1U);
    EXPECT_EQ(bench.sink.Whole()[0].content, old);
}

TEST_P(Transfer, GoesToTheCurrentDeviceUnderTheLastPartOfItsName) {
    TransferBench bench;
    bench.Begin("CHDIR\"tmp:\":" + Statement("\"R\""));
    const auto sender = Way().sender();
    MemorySource source({MemoryFile{"c:/labels/PRICE LIST.DAT", "apples"}});
    bench.Run(*sender, &source, nullptr);
    EXPECT_EQ(bench.Tail(), "Ok\r\n");
    EXPECT_TRUE(HasFile(bench, "PRICE LIST.DAT"));
    EXPECT_EQ(bench.Line("KILL \"c:PRICE LIST.DAT\""), "Error 1022: File not found");
    EXPECT_TRUE(bench.Lines("KILL \"tmp:PRICE LIST.DAT\"").empty());
}

TEST_P(Transfer, BringsSeveralFilesInOneSession) {
    TransferBench bench;
    MemorySource source({{"A.DAT", "first"}, {"B.DAT", ""}, {"C.DAT", EveryByte()}});
    EXPECT_EQ(bench.Upload(Way(), source), Outcome::Success);
    EXPECT_EQ(bench.Tail(), "Ok\r\n");
    for (const std::string name : {"A.DAT", "B.DAT", "C.DAT"})
        EXPECT_TRUE(HasFile(bench, name)) << name;
}

TEST_P(Transfer, IsRefusedByAWriteProtectedDeviceAndForABadName) {
    TransferBench bench;
    EXPECT_NE(bench.Upload(Way(), {std::string(41, 'N'), "x"}), Outcome::Success);
    EXPECT_EQ(bench.Tail(), "Error 1021: Bad file name\r\nOk\r\n");
    bench.Ask("CHDIR \"rom:\"");
    EXPECT_NE(bench.Upload(Way(), {"F", "x"}), Outcome::Success);
    EXPECT_EQ(bench.Tail(), "Error 1020: Device is write protected\r\nOk\r\n");
}

TEST_P(Transfer, OfAMissingFileFailsBeforeAnythingGoesOut) {
    TransferBench bench;
    EXPECT_EQ(bench.Line(Statement("\"S\",\"NONE\"")), "Error 1022: File not found");
    EXPECT_EQ(bench.Line(Statement("\"S\",\"disk9:F\"")), "Error 1018: Device not found");
}

TEST_P(Transfer, TakesRAloneOrSAndAName) {
    TransferBench bench;
    EXPECT_EQ(bench.Line(Statement("\"X\"")), "Error 5: Illegal argument");
    EXPECT_EQ(bench.Line(Statement("\"S\"")), "Error 5: Illegal argument");
    EXPECT_EQ(bench.Line(Statement("\"R\",\"F\"")), "Error 5: Illegal argument");
    EXPECT_EQ(bench.Line(Statement("")), "Error 19: Syntax error");
    EXPECT_EQ(bench.Line("TRANSFER X \"R\""), "Error 19: Syntax error");
}

TEST_P(Transfer, ToWhichNobodyAnswersFailsAndRestsInBetween) {
    TransferBench bench;
    LoadFile(bench, "F", "x");
    for (const std::string arguments : {"\"R\"", "\"S\",\"F\""}) {
        bench.Begin(Statement(arguments));
        bench.Read(1'000'000);
        const auto due = bench.Printer().NextDue();
        ASSERT_TRUE(due.has_value());
        EXPECT_GT(*due, bench.Now());
        EXPECT_TRUE(bench.Read(60'000'000).ends_with("Error 1050: File transfer failed\r\nOk\r\n"))
            << arguments;
        EXPECT_EQ(bench.Line("PRINT 1"), "1");
    }
}

TEST_P(Transfer, EndsWithABreak) {
    TransferBench bench("R7G?baud=115200&paced=on");
    bool broken = false;
    bench.onStep = [&](TransferEngine& engine) {
        if (broken || engine.Progress().bytes <= 20'000) return;
        broken = true;
        bench.Printer().DiscardFromHost(bench.Now());
        bench.Printer().Break(bench.Now());
    };
    EXPECT_EQ(bench.Upload(Way(), {"F", RandomBytes(100'000, 8)}), Outcome::CancelledThere);
    EXPECT_TRUE(bench.Tail().starts_with("Break\r\nOk\r\n")) << bench.Tail();
    bench.Send("\r");
    bench.Read(1'000'000);
    bench.Send("KILL \"F\"\r");
    EXPECT_EQ(bench.Read(1'000'000), "KILL \"F\"\r\nError 1022: File not found\r\nOk\r\n");
}

TEST_P(Transfer, LeavesWhatComesBehindItsEndToTheConsole) {
    TransferBench bench;
    bench.behindTheEnd = "PRINT 6*7\r";
    EXPECT_EQ(bench.Upload(Way(), {"F", "x"}), Outcome::Success);
    EXPECT_EQ(bench.Tail(), "Ok\r\nPRINT 6*7\r\n42\r\nOk\r\n");
}

TEST_P(Transfer, RunsInAProgramThatTrapsItsFailure) {
    TransferBench bench("R7A?capacity=2000");
    bench.Send("10 ON ERROR GOTO 50\r20 " + Statement("\"R\"")
               + "\r30 PRINT \"STORED\"\r40 END\r50 PRINT \"E\";ERR\r60 END\r");
    bench.Read();
    const auto run = [&](const MemoryFile& file) {
        bench.Begin("RUN");
        const auto sender = Way().sender();
        MemorySource source({file});
        bench.Run(*sender, &source, nullptr);
        return bench.Tail();
    };
    EXPECT_EQ(run({"F", "x"}), "STORED\r\nOk\r\n");
    EXPECT_EQ(run({"G", std::string(5000, 'x')}), "E1019\r\nOk\r\n");
}

TEST(DeviceThatFills, EndsTheTransferAndWhatIsUnderWayIsNoCommand) {
    TransferBench bench("R7A?capacity=5000&baud=115200&paced=on");
    EXPECT_NE(
        bench.Upload(kermitWithoutSize, {"F", std::string(1000, '\r') + RandomBytes(50'000, 9)}),
        Outcome::Success);
    ExpectEnd(bench, "Error 1019: Device full\r\nOk\r\n");
    bench.Send("KILL \"F\"\r");
    EXPECT_EQ(bench.Read(1'000'000), "KILL \"F\"\r\nError 1022: File not found\r\nOk\r\n");
}

TEST(SevenBitLine, CarriesEveryByteByKermitWhetherOrNotTheHostWasTold) {
    for (const Protocol* way : {&kermitOfSevenBits, &kermit}) {
        TransferBench bench("R7G?format=n,7,2");
        const std::string content = EveryByte();
        EXPECT_EQ(bench.Upload(*way, {"F", content}), Outcome::Success);
        EXPECT_EQ(bench.Tail(), "Ok\r\n");
        EXPECT_EQ(bench.Download(*way, "F"), Outcome::Success);
        ASSERT_EQ(bench.sink.Whole().size(), 1U);
        EXPECT_TRUE(bench.sink.Whole()[0].content == content);
    }
}

TEST(SevenBitLine, IsNotForZModem) {
    TransferBench bench("R7G?format=n,7,2");
    EXPECT_EQ(bench.Line("TRANSFER Z \"R\""), "Error 1052: Line carries seven bits only");
}

TEST(TextByKermit, IsStoredWithTheLineEndsThatTravel) {
    TransferBench bench;
    MemorySource source({MemoryFile{"T", "one\ntwo\n"}});
    source.text = true;
    EXPECT_EQ(bench.Upload(kermit, source), Outcome::Success);
    EXPECT_EQ(bench.Download(kermit, "T"), Outcome::Success);
    ASSERT_EQ(bench.sink.Whole().size(), 1U);
    EXPECT_EQ(bench.sink.Whole()[0].content, "one\r\ntwo\r\n");
}

} // namespace
} // namespace qncomm::testing
