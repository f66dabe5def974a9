// Files between a host and the virtual printer, the whole way down on a driven clock.

#include "platform/SystemFiles.h"
#include "printer/clsQuorin.h"
#include "testing/core/ExpectRaised.h"
#include "testing/core/ScratchFolder.h"
#include "testing/stack/ManualReactor.h"
#include "testing/stack/Stack.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

namespace qncomm::testing {
namespace {

std::string AllBytes(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = 12345;
    for (char& c : bytes) {
        state = state * 1664525U + 1013904223U;
        c = static_cast<char>(state >> 24U);
    }
    return bytes;
}

struct LineOf {
    const char* name;
    const char* address;
    std::size_t size;
};

class StackTransfer : public ::testing::TestWithParam<LineOf> {
  protected:
    ScratchFolder mFolder;
    const std::string mContent = AllBytes(GetParam().size);
    const std::string mSent = mFolder.Write("sent.bin", mContent);
    ManualReactor mReactor;
    Stack mStack{mReactor, GetParam().address};
    clsQuorin mQuorin{mStack.mLink, mStack.mDesktop, SystemFiles()};
};

TEST_P(StackTransfer, GoesThereAndBackByKermit) {
    mQuorin.KermitUpload(mSent, "c:DATA.BIN");
    EXPECT_EQ(mStack.mLink.UseCount(), 0);
    EXPECT_TRUE(mQuorin.PrinterFileExists("c:DATA.BIN"));
    mQuorin.KermitDownload("c:DATA.BIN", mFolder.File("back.bin"));
    EXPECT_EQ(mFolder.Read("back.bin"), mContent);
    EXPECT_EQ(mStack.Ask("PRINT 1").at(1), "1") << "the printer is at its prompt";
}

// A percentage between comes only where the line brings its bytes in pieces.
TEST_P(StackTransfer, ThePercentagesRiseToTheEndInBothDirections) {
    std::vector<int> percents;
    const Subscription status = mStack.mLink.StatusEvent.Connect(
        [&](std::string& text, std::int16_t& percent, bool& /*stop*/) {
            if (text.find("loading") != std::string::npos) percents.push_back(percent);
        });
    const auto rise = [&](const char* direction) {
        ASSERT_GE(percents.size(), 2U) << direction;
        EXPECT_EQ(percents.back(), -1) << direction;
        percents.pop_back();
        EXPECT_EQ(percents.back(), 100) << direction;
        EXPECT_TRUE(std::ranges::is_sorted(percents))
            << direction << ": " << ::testing::PrintToString(percents);
        percents.clear();
    };
    mQuorin.KermitUpload(mSent, "c:DATA.BIN");
    rise("to the printer");
    mStack.mLink.KermitDownload("c:DATA.BIN", mFolder.File("back.bin"));
    rise("from the printer");
}

TEST_P(StackTransfer, ACancelLeavesThePrinterAtItsPromptAndNoFile) {
    const Subscription cancel =
        mStack.mLink.StatusEvent.Connect([](std::string& text, std::int16_t&, bool& stop) {
            if (text.starts_with("Uploading")) stop = true;
        });
    EXPECT_RAISED(mQuorin.KermitUpload(mSent, "c:DATA.BIN"), 1023);
    EXPECT_EQ(mStack.mLink.UseCount(), 0);
    mReactor.Pass(2000);
    EXPECT_EQ(mStack.Ask("PRINT 1").at(1), "1");
}

INSTANTIATE_TEST_SUITE_P(Lines, StackTransfer,
                         ::testing::Values(LineOf{"Plain", "sim:R7G", 50'000},
                                           LineOf{"SevenBits", "sim:R7G?format=n,7,2", 20'000},
                                           LineOf{"Paced", "sim:R7G?paced=on&baud=57600", 20'000},
                                           LineOf{"Empty", "sim:R7G", 0}),
                         [](const auto& line) { return line.param.name; });

class RefusedTransfer : public ::testing::TestWithParam<const char*> {
  protected:
    /// What was refused cost neither time nor the printer's program.
    void ExpectNothingOfIt() {
        EXPECT_LT(mReactor.NowMs() - mBegun, 2000);
        EXPECT_EQ(mStack.mLink.UseCount(), 0);
        EXPECT_EQ(mStack.Ask("LIST"), (std::vector<std::string>{"LIST", "Ok"}))
            << "no packet was taken for a line of a program";
    }

    ManualReactor mReactor;
    Stack mStack{mReactor, GetParam()};
    const std::string mModel = mStack.mLink.ModelText(); // the printer is found
    const std::int64_t mBegun = mReactor.NowMs();
    ScratchFolder mFolder;
};

TEST_P(RefusedTransfer, FailsAtOnceWithThePrintersErrorWhenItIsFetched) {
    EXPECT_RAISED_FROM(mStack.mLink.KermitDownload("c:NONE", mFolder.File("never-comes.bin")),
                       "61022 clsDatalink:GetPrinterError");
    EXPECT_TRUE(mFolder.IsEmpty());
    ExpectNothingOfIt();
}

TEST_P(RefusedTransfer, FailsAtOnceWithThePrintersErrorWhenItIsSent) {
    const std::string path = mFolder.Write("unwanted.bin", "ten bytes.");
    EXPECT_RAISED_FROM(mStack.mLink.KermitUpload(path, "card9:X"),
                       "61018 clsDatalink:GetPrinterError");
    ExpectNothingOfIt();
}

INSTANTIATE_TEST_SUITE_P(Printers, RefusedTransfer,
                         ::testing::Values("sim:R7G", "sim:R7G?late-errors=350",
                                           "sim:R7G?answer=350:TRANSFER",
                                           "sim:R7G?paced=on&baud=2400"));

TEST(StackTransferFailure, ARefusalThatComesBehindTheFirstPacketEndsItToo) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G?late-errors=3000");
    ScratchFolder folder;
    const std::string path = folder.Write("unwanted.bin", "ten bytes.");
    EXPECT_RAISED(stack.mLink.KermitUpload(path, "card9:X"), 61018);
    EXPECT_LT(reactor.NowMs(), 10'000);
}

TEST(StackTransferFailure, ABinaryTransferToAPromptEndsAtOnce) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G");
    ScratchFolder folder;
    const std::string path = folder.Write("unwanted.bin", "ten bytes.");
    stack.Ask("PRINT 1"); // finds the printer's settings
    stack.mLink.SetTerminalActive(true);
    const std::int64_t begun = reactor.NowMs();
    EXPECT_RAISED(stack.mLink.BinaryUpload(path), 1023);
    EXPECT_LT(reactor.NowMs() - begun, 2000);
    EXPECT_EQ(stack.Ask("PRINT 1").at(1), "1") << "what the packets left is no part of a command";
}

TEST(StackTransferFailure, ACancelWhileTheFirstPacketIsHeldBackReachesThePrinter) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G");
    ScratchFolder folder;
    const std::string path = folder.Write("held.bin", "ten bytes.");
    stack.Ask("PRINT 1");
    const auto cancel =
        reactor.StartTimer(100, [&] { stack.mSerial.SetTransferState(TransferAborting); });
    EXPECT_RAISED(stack.mLink.KermitUpload(path, "X"), 1023);
    EXPECT_LT(reactor.NowMs(), 6000);
    EXPECT_EQ(stack.Ask("PRINT 1").at(1), "1");
}

TEST(StackTransferFailure, APortThatClosesOnASlowLineHasToldThePrinterFirst) {
    for (const char* const transfer : {"TRANSFER Z \"R\"", "TRANSFER K \"R\""}) {
        ManualReactor reactor;
        Stack stack(reactor, "sim:R7G?baud=9600&paced=on");
        const ScratchFolder folder;
        stack.Ask("PRINT 1");                           // finds the printer's settings
        stack.mSerial.SetEventSink([](SerialEvent) {}); // the link is not the one who sends
        stack.mSerial.SetPortOpen(true);
        stack.mSerial.Write(std::string(transfer) + "\r");
        reactor.Pass(200);
        stack.mSerial.SetBinaryProtocol(transfer[9] == 'Z' ? BinaryZModem : BinaryKermit);
        stack.mSerial.SetTransferKind(TransferBinary);
        stack.mSerial.SendFile(folder.Write("cut.bin", AllBytes(5000)));
        reactor.Pass(500);
        ASSERT_EQ(stack.mSerial.TransferState(), TransferMoving) << stack.mSerial.TransferReason();
        const std::int64_t begun = reactor.NowMs();
        stack.mSerial.SetPortOpen(false);
        EXPECT_LE(reactor.NowMs() - begun, 200) << transfer;
        reactor.Pass(2000);
        stack.mLink.SetImmediateMode(false);
        EXPECT_TRUE(stack.mLink.AutoConnect(1)) << transfer;
    }
}

/// The states that the serial control reports of a transfer that nobody else follows.
std::vector<std::int16_t> StatesOf(Stack& stack, ManualReactor& reactor,
                                   const std::function<void(PDQComm&)>& start) {
    std::vector<std::int16_t> states;
    PDQComm& port = stack.mSerial;
    port.SetEventSink([&](SerialEvent event) {
        if (event == SerialEventTransfer) states.push_back(port.TransferState());
    });
    start(port);
    reactor.Pass(120'000);
    return states;
}

TEST(StackTransferStates, BeginWithStartedAndEndWithIdleOrFailedAndNothingElse) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G");
    const ScratchFolder folder;
    const std::string path = folder.Write("states.bin", "ten bytes.");
    stack.Ask("PRINT 1"); // finds the printer's settings
    auto good = StatesOf(stack, reactor, [&](PDQComm& port) {
        port.SetPortOpen(true);
        port.Write("TRANSFER K \"R\"\r");
        reactor.Pass(200);
        port.FlushReceive();
        port.SendFile(path);
    });
    good.erase(std::ranges::unique(good).begin(), good.end()); // it moves more than once
    EXPECT_EQ(good, (std::vector<std::int16_t>{TransferStarted, TransferAnnounced, TransferMoving,
                                               TransferClosing, TransferIdle}));
    const std::vector<std::int16_t> failed{TransferStarted, TransferFailed};
    EXPECT_EQ(StatesOf(stack, reactor, [](PDQComm& port) { port.SendFile("/no/such"); }), failed);
    EXPECT_EQ(StatesOf(stack, reactor, [&](PDQComm& port) { port.ReceiveFile(path); }), failed)
        << "nobody sends";
    EXPECT_EQ(StatesOf(stack, reactor,
                       [&](PDQComm& port) {
                           port.ReceiveFile(path);
                           port.SetTransferState(TransferAborting);
                       }),
              failed);
    EXPECT_EQ(StatesOf(stack, reactor,
                       [&](PDQComm& port) {
                           port.SetPortOpen(false);
                           port.SendFile(path);
                       }),
              failed);
}

TEST(StackTransferFailure, ABinaryDownloadLooksAtNeitherPortNorFileAndFailsOnAClosedPort) {
    ManualReactor reactor;
    Stack stack(reactor, "sim:R7G");
    const ScratchFolder folder;
    const std::string target = folder.Write("never-opened.bin", "what stood here before");
    for (const std::int16_t protocol : {BinaryZModem, BinaryKermit}) {
        EXPECT_RAISED_FROM(stack.mLink.BinaryDownload(target, protocol),
                           "1022 QNComm, clsDataLink:KermitDownload");
        EXPECT_EQ(stack.mSerial.TransferReason(), "the port is not open");
        EXPECT_EQ(folder.Read("never-opened.bin"), "what stood here before");
    }
}

} // namespace
} // namespace qncomm::testing
