#include "PrinterRig.h"

#include <algorithm>

namespace qncomm::testing {
namespace {

constexpr std::string_view Probe = "\x11\rIMMEDIATE ON:SYSVAR(18)=-1:PRINT\"HELLO\"\r";

std::string ProbeWith(PrinterRig& rig, const LineFormat& format) {
    rig.Printer().SetHostFormat(format, rig.Now());
    rig.Send(Probe);
    std::string reply = rig.Read();
    for (char& c : reply)
        c = static_cast<char>(c & 0x7F);
    return reply;
}

bool Found(const std::string& reply) {
    const auto hello = reply.find("HELLO");
    return hello != std::string::npos && reply.find("Ok\r\n", hello) != std::string::npos;
}

const std::vector<LineFormat>& AllFormats() {
    static const std::vector<LineFormat> formats = [] {
        std::vector<LineFormat> all;
        for (const int baud : {9600, 19200, 57600, 115200, 38400, 4800, 2400}) {
            all.push_back({baud, 8, 2, 'm'});
            all.push_back({baud, 8, 2, 'n'});
            all.push_back({baud, 7, 2, 'n'});
            all.push_back({baud, 7, 1, 'n'});
        }
        return all;
    }();
    return formats;
}

TEST(LineSettings, AnswerOnlyTheRateDataBitsAndParityThatAreSetUp) {
    for (const LineFormat& printer : AllFormats()) {
        Options options;
        options.baud = *printer.baud;
        options.dataBits = *printer.dataBits;
        options.stopBits = *printer.stopBits;
        options.parity = *printer.parity;
        PrinterRig rig(options);
        for (const LineFormat& host : AllFormats()) {
            const bool understood = host.baud == printer.baud && host.dataBits == printer.dataBits
                                    && host.parity == printer.parity;
            EXPECT_EQ(Found(ProbeWith(rig, host)), understood)
                << *printer.baud << *printer.parity << " and " << *host.baud << *host.parity;
        }
        // What the wrong combinations left behind is gone with the next line end.
        EXPECT_TRUE(Found(ProbeWith(rig, printer)));
    }
}

TEST(LineSettings, ItemsThatAreNotCarriedCauseNoMismatch) {
    PrinterRig rig("R7G?baud=57600&format=m,7,1");
    LineFormat format;
    EXPECT_TRUE(Found(ProbeWith(rig, format)));
    format.baud = 57600;
    EXPECT_TRUE(Found(ProbeWith(rig, format)));
    format.dataBits = 8;
    EXPECT_FALSE(Found(ProbeWith(rig, format)));
}

TEST(LineSettings, OneStopBitAndTwoUnderstandEachOtherAndHearNoErrors) {
    for (const int printer : {1, 2}) {
        PrinterRig rig("R7G?format=n,8," + std::to_string(printer));
        EXPECT_TRUE(Found(ProbeWith(rig, {9600, 8, 3 - printer, 'n'})));
        const HostErrors errors = rig.Printer().TakeHostErrors();
        EXPECT_FALSE(errors.frame || errors.parity);
    }
}

TEST(LineSettings, SevenBitLineLosesTheEighthBit) {
    PrinterRig rig("R7G?format=n,7,2");
    EXPECT_EQ(rig.Line("PRINT CHR$(193)"), "A");
}

TEST(LineSettings, NothingIsHeardWithoutAHost) {
    PrinterRig rig;
    rig.Send("PRINT 1\r\n");
    rig.Printer().HostClosed(rig.Now());
    EXPECT_EQ(rig.Read(), "");
    rig.Printer().HostOpened(rig.Now());
    EXPECT_EQ(rig.Read(), "");
    EXPECT_EQ(rig.Line("PRINT 2"), "2");
}

TEST(PacedLine, TakesItsTimeInBothDirections) {
    PrinterRig rig("R7G?baud=9600&format=n,8,2&paced");
    constexpr Micros characterNs = Micros{1'000'000'000} / 9600 * 11;
    rig.Send("PRINT 1\r");
    EXPECT_EQ(rig.Printer().PendingFromHost(rig.Now()), 8U);
    EXPECT_EQ(rig.Printer().PendingFromHost(rig.Now() + 4 * characterNs / 1000 + 1), 4U);
    const Micros start = rig.Now();
    std::string reply;
    Micros last = start;
    while (const auto due = rig.Printer().NextDue()) {
        const std::string piece = rig.Printer().ToHost(std::max(*due, last), 1000);
        last = std::max(*due, last);
        reply += piece;
        if (reply.ends_with("Ok\r\n")) break;
    }
    EXPECT_EQ(reply, "PRINT 1\r\n1\r\nOk\r\n");
    // Each echoed character leaves as the next one arrives; the answer follows the last.
    EXPECT_GE(last - start, 8 * characterNs / 1000 + 7 * characterNs / 1000);
    EXPECT_EQ(rig.Printer().PendingFromHost(last), 0U);
}

TEST(PacedLine, CarriesAtTheSendersOwnPace) {
    // Ten bits a byte from the host, eleven from the printer.
    PrinterRig rig("R7G?baud=300&format=n,8,2&paced");
    rig.Printer().SetHostFormat({300, 8, 1, 'n'}, rig.Now());
    rig.Send(std::string(30, 'x'));
    EXPECT_EQ(rig.Printer().PendingFromHost(rig.Now() + 999'000), 1U);
    EXPECT_EQ(rig.Printer().PendingFromHost(rig.Now() + 1'000'001), 0U);
}

TEST(PacedLine, HoldsAFewBytesAndHasRoomAgainAsTheyPass) {
    PrinterRig rig("R7G?baud=9600&format=n,8,2&paced");
    const std::size_t all = rig.Printer().Room(rig.Now());
    EXPECT_EQ(all, 128U);
    rig.Send(std::string(all, '\n'));
    EXPECT_EQ(rig.Printer().Room(rig.Now()), 0U);
    const Micros due = rig.Printer().RoomDue().value_or(0);
    EXPECT_EQ(rig.Printer().Room(due - 1), 0U);
    EXPECT_EQ(rig.Printer().Room(due), all / 4);
    EXPECT_EQ(PrinterRig("R7G").Printer().RoomDue(), std::nullopt);
}

TEST(PacedLine, LosesWhatThePrintersReceiveBufferDoesNotHold) {
    PrinterRig rig("R7G?baud=115200&paced&answer=60000:PRINT");
    rig.Send("PRINT 1\r" + std::string(5000, '\0') + "PRINT 2\r");
    EXPECT_TRUE(rig.Read(120'000'000).ends_with("1\r\nOk\r\n")) << "the second line is lost";
    PrinterRig holds("R7G?baud=115200&paced&answer=60000:PRINT");
    holds.Send("PRINT 1\r" + std::string(4000, '\0') + "PRINT 2\r");
    EXPECT_TRUE(holds.Read(180'000'000).ends_with("2\r\nOk\r\n"));
}

TEST(FlowControl, XoffHoldsTheAnswerUntilXon) {
    PrinterRig rig;
    rig.Ask("SETUP\"SER-COM,UART1,FLOWCONTROL,XON/XOFF,DATA TO HOST,ENABLE\"");
    rig.Send("\x13PRINT 1\r");
    EXPECT_EQ(rig.Read(), "");
    rig.Send("\x11");
    EXPECT_EQ(rig.Read(), "PRINT 1\r\n1\r\nOk\r\n");
}

TEST(FlowControl, PrinterStopsAndResumesTheHost) {
    PrinterRig rig;
    rig.Ask("SETUP\"SER-COM,UART1,FLOWCONTROL,XON/XOFF,DATA FROM HOST,ENABLE\"");
    rig.Ask("SYSVAR(18)=0");
    rig.Ask("10 FOR I=1 TO 100000:NEXT");
    rig.Send("RUN\r" + std::string(4000, '\r'));
    EXPECT_EQ(rig.Read(), "\x13\x11");
}

TEST(FlowControl, LoweredRtsHoldsTheAnswer) {
    PrinterRig rig;
    rig.Ask("SETUP\"SER-COM,UART1,FLOWCONTROL,RTS/CTS,ENABLE\"");
    rig.Printer().SetHostLines(true, false, rig.Now());
    rig.Send("PRINT 1\r");
    EXPECT_EQ(rig.Read(), "");
    rig.Printer().SetHostLines(true, true, rig.Now());
    EXPECT_EQ(rig.Read(), "PRINT 1\r\n1\r\nOk\r\n");
}

std::string Repeated(std::string_view address) {
    PrinterRig rig(address);
    std::string all;
    for (int i = 0; i < 50; ++i)
        all += rig.Ask("PRINT \"0123456789012345678901234567890123456789\"");
    return all;
}

TEST(Faults, SameSeedDoesTheSameDamage) {
    for (const std::string fault : {"lost", "doubled", "flipped"}) {
        const std::string clean = Repeated("R7G");
        const std::string first = Repeated("R7G?" + fault + "=0.02,seed=7");
        EXPECT_NE(first, clean) << fault;
        EXPECT_EQ(first, Repeated("R7G?" + fault + "=0.02,seed=7")) << fault;
        EXPECT_NE(first, Repeated("R7G?" + fault + "=0.02,seed=8")) << fault;
    }
}

TEST(Faults, StallPausesTheAnswer) {
    PrinterRig rig("R7G?stall=1:500");
    rig.Send("\r");
    EXPECT_EQ(rig.Read(499'999), "");
    EXPECT_EQ(rig.Read(1), "\r\n");
}

TEST(Faults, NoEchoLeavesTheAnswer) {
    PrinterRig rig("R7G?no-echo");
    EXPECT_EQ(rig.Ask("PRINT 1"), "1\r\nOk\r\n");
}

TEST(Faults, CommandOfThatNumberFails) {
    PrinterRig rig("R7G?error-on=2");
    EXPECT_EQ(rig.Line("PRINT 1"), "1");
    EXPECT_EQ(rig.Line("PRINT 2"), "Error 1099: Print head fault");
    EXPECT_EQ(rig.Line("PRINT 3"), "3");
}

TEST(Faults, DroppedDsrIsSeenByTheHost) {
    EXPECT_TRUE(PrinterRig("R7G").Printer().Dsr());
    EXPECT_FALSE(PrinterRig("R7G?dsr=off").Printer().Dsr());
}

TEST(Faults, LineIsCutAfterItsBytes) {
    PrinterRig rig("R7G?cut=10");
    EXPECT_EQ(rig.Ask("PRINT \"HELLO\""), "PRINT \"HEL");
    EXPECT_TRUE(rig.Printer().LineCut());
    EXPECT_EQ(rig.Ask("PRINT 1"), "");
}

TEST(Address, NamesWhatIsWrong) {
    EXPECT_NE(ParseAddress("R7X").error.find("R7EZV"), std::string::npos);
    EXPECT_NE(ParseAddress("R7G?baud=1234").error.find("baud"), std::string::npos);
    EXPECT_NE(ParseAddress("R7G?speed=1").error.find("no option"), std::string::npos);
    EXPECT_NE(ParseAddress("R7G?lost=2").error.find("0 to 1"), std::string::npos);
    EXPECT_NE(ParseAddress("R7A?uart=2").error.find("UART2"), std::string::npos);
    EXPECT_FALSE(ParseAddress("").options.has_value());
}

TEST(Address, CarriesEveryOption) {
    const Options options = PrinterRig::Parse(
        "R7FZV?baud=57600&format=M,7,1&uart=3&boot-ms=9&paced&version=Quorin 7.00&capacity=1000&"
        "lost=0.5,seed=3&stall=0.25:40,seed=4&error-on=3&dsr=off&cut=12&no-echo=on&"
        "answer=40&answer=700:files \"card&late-errors=30&long-setup&greeting=Ready.&"
        "noise=0.5,seed=5&power-lost=0.1,seed=6&power-lost-after=7");
    EXPECT_EQ(options.model, "R7FZV");
    EXPECT_EQ(options.baud, 57600);
    EXPECT_EQ(options.parity, 'm');
    EXPECT_EQ(options.dataBits, 7);
    EXPECT_EQ(options.stopBits, 1);
    EXPECT_EQ(options.uart, 3);
    EXPECT_EQ(options.bootMs, 9);
    EXPECT_TRUE(options.paced);
    EXPECT_EQ(options.version, "Quorin 7.00");
    EXPECT_EQ(options.capacity, 1000U);
    EXPECT_EQ(options.faults.lost.rate, 0.5);
    EXPECT_EQ(options.faults.lost.seed, 3U);
    EXPECT_EQ(options.faults.stallMs, 40);
    EXPECT_EQ(options.faults.stall.seed, 4U);
    EXPECT_EQ(options.faults.errorOnCommand, 3);
    EXPECT_TRUE(options.faults.dsrDropped);
    EXPECT_EQ(options.faults.cutAfter, 12U);
    EXPECT_TRUE(options.faults.noEcho);
    ASSERT_EQ(options.moods.answers.size(), 2U);
    EXPECT_EQ(options.moods.answers[0].ms, 40);
    EXPECT_EQ(options.moods.answers[0].command, "");
    EXPECT_EQ(options.moods.answers[1].ms, 700);
    EXPECT_EQ(options.moods.answers[1].command, "FILES\"CARD");
    EXPECT_EQ(options.moods.lateErrorsMs, 30);
    EXPECT_TRUE(options.moods.longSetup);
    EXPECT_EQ(options.moods.greeting, "Ready.");
    EXPECT_EQ(options.moods.noise.rate, 0.5);
    EXPECT_EQ(options.moods.noise.seed, 5U);
    EXPECT_EQ(options.moods.powerLost.rate, 0.1);
    EXPECT_EQ(options.moods.powerLost.seed, 6U);
    EXPECT_EQ(options.moods.powerLostAfter, 7);
}

} // namespace
} // namespace qncomm::testing
