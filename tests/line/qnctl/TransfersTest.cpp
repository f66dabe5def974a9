// Files there and back by the command line, as programs of their own.
#include "TransferFixture.h"

#include <filesystem>
#include <functional>
#include <ostream>
#include <sstream>

namespace {

using nlohmann::json;
using qncomm::testing::Arguments;
using qncomm::testing::Ended;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::size_t Size = 60'000;

/// What a transfer told, an object a line.
std::vector<json> LinesOf(const std::string& out) {
    std::vector<json> lines;
    std::istringstream in(out);
    for (std::string line; std::getline(in, line);)
        lines.push_back(json::parse(line));
    return lines;
}

class Transfer : public qncomm::testing::TransferFixture {
  protected:
    Transfer() { WriteHostFile("data.bin", mContent); }

    void ExpectIdentical(const std::string& name) {
        EXPECT_TRUE(PrinterFile(name) == mContent) << "what came back differs";
    }

    const std::string mContent = Content(Size);
};

struct Line {
    const char* name;
    std::function<void(class TransferOver&)> start;
};

void PrintTo(const Line& line, std::ostream* stream) {
    *stream << line.name;
}

/// Over each kind of line.
class TransferOver : public Transfer, public testing::WithParamInterface<Line> {
  public:
    TransferOver() { GetParam().start(*this); }
    using TransferFixture::PrinterInProcess;
    using TransferFixture::PrinterOnPty;
    using TransferFixture::PrinterOnRemotePort;
    using TransferFixture::PrinterOnTcp;
};

const Line InProcess{"Sim", [](TransferOver& test) { test.PrinterInProcess(); }};
const Line OnPty{"Pty", [](TransferOver& test) { test.PrinterOnPty(); }};
const Line OnTcp{"Tcp", [](TransferOver& test) { test.PrinterOnTcp(); }};
const Line OnRemotePort{"Rfc2217", [](TransferOver& test) { test.PrinterOnRemotePort(); }};

const Arguments Slow{"--paced", "--baud", "9600"};
const Line OnSlowPty{"Pty", [](TransferOver& test) { test.PrinterOnPty(Slow); }};
const Line OnSlowTcp{"Tcp", [](TransferOver& test) { test.PrinterOnTcp(Slow); }};
const Line OnSlowRemotePort{"Rfc2217", [](TransferOver& test) { test.PrinterOnRemotePort(Slow); }};

std::string NameOf(const testing::TestParamInfo<Line>& line) {
    return line.param.name;
}

TEST_P(TransferOver, KermitCarriesAFileThereAndBack) {
    const Ended sent = Carry({"kermit", "send", PathOf("data.bin"), "c:DATA.BIN"});
    ASSERT_EQ(sent.status, 0) << sent.err;
    EXPECT_THAT(sent.out, IsEmpty());
    EXPECT_THAT(sent.err, IsEmpty());
    ExpectIdentical("c:DATA.BIN");
}

TEST_P(TransferOver, AFileWithoutANameThereKeepsItsOwn) {
    ASSERT_EQ(Carry({"kermit", "send", PathOf("data.bin")}).status, 0);
    ExpectIdentical("data.bin");
}

TEST_P(TransferOver, JsonTellsTheProgressALineAtATime) {
    const Ended sent = Carry({"kermit", "send", PathOf("data.bin"), "c:D.BIN", "--json"});
    const Ended fetched = Carry({"kermit", "receive", "c:D.BIN", PathOf("d.bin"), "--json"});
    for (const Ended& ended : {sent, fetched}) {
        ASSERT_EQ(ended.status, 0) << ended.err;
        std::vector<json> lines = LinesOf(ended.out);
        ASSERT_GE(lines.size(), 2U) << ended.out;
        const json result = lines.back();
        lines.pop_back();
        EXPECT_EQ(result.at("done"), true);
        EXPECT_EQ(result.at("bytes"), Size);
        int before = -1;
        for (const json& line : lines) {
            EXPECT_GE(line.at("progress"), before);
            before = line.at("progress");
            EXPECT_EQ(line.at("size"), Size);
            EXPECT_LE(line.at("bytes"), Size);
            EXPECT_TRUE(line.contains("rate") && line.contains("secondsLeft"));
        }
        EXPECT_EQ(before, 100);
    }
}

TEST_P(TransferOver, QuietJsonIsTheResultAlone) {
    const Ended sent =
        Carry({"kermit", "send", PathOf("data.bin"), "c:D.BIN", "--json", "--quiet"});
    EXPECT_EQ(sent.Document().at("done"), true);
}

TEST_P(TransferOver, AMissingHostFileCostsThePrintersCopyNothing) {
    ASSERT_EQ(Carry({"kermit", "send", PathOf("data.bin"), "c:DATA.BIN"}).status, 0);
    const Ended missing = Carry({"kermit", "send", PathOf("none.bin"), "c:DATA.BIN"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.err, HasSubstr("error 1011"));
    ExpectIdentical("c:DATA.BIN");
}

TEST_P(TransferOver, AFileThatThePrinterLacksLeavesNoFileHere) {
    const Ended fetched = Carry({"kermit", "receive", "c:NONE.BIN", PathOf("none.bin")});
    EXPECT_EQ(fetched.status, 1);
    EXPECT_EQ(fetched.err, "qnctl: There is no file NONE.BIN on c:\n");
    EXPECT_FALSE(HasHostFile("none.bin"));
}

TEST_P(TransferOver, ADeviceThatThePrinterLacksIsToldAtOnce) {
    for (const Arguments& arguments :
         {Arguments{"kermit", "send", PathOf("data.bin"), "card7:X"},
          Arguments{"kermit", "receive", "card7:X", PathOf("none.bin")}}) {
        const Ended ended = Carry(arguments);
        EXPECT_EQ(ended.status, 1);
        EXPECT_THAT(ended.err, HasSubstr("error 1010: Missing or invalid device name."));
    }
    EXPECT_FALSE(HasHostFile("none.bin"));
}

TEST_P(TransferOver, ANameWithBlanksIsANameLikeAnyOther) {
    WriteHostFile("two words.bin", mContent);
    ASSERT_EQ(Carry({"kermit", "send", PathOf("two words.bin")}).status, 0);
    ExpectIdentical("c:two words.bin");
}

TEST_P(TransferOver, AFileThatIsThereIsReplacedAndAFolderIsNot) {
    ASSERT_EQ(Carry({"kermit", "send", PathOf("data.bin"), "c:DATA.BIN"}).status, 0);
    WriteHostFile("back.bin", "what stood here before");
    MakeFolder("in");
    EXPECT_EQ(Carry({"kermit", "receive", "c:DATA.BIN", PathOf("back.bin")}).status, 0);
    EXPECT_TRUE(HostFile("back.bin") == mContent);
    const Ended fetched = Carry({"kermit", "receive", "c:DATA.BIN", PathOf("in")});
    EXPECT_EQ(fetched.status, 1);
    EXPECT_THAT(fetched.err, HasSubstr("in: this is a folder)"));
    EXPECT_TRUE(FolderIsEmpty("in"));
}

TEST_P(TransferOver, AFolderThatTakesNoFileIsTheStatedReason) {
    ASSERT_EQ(Carry({"kermit", "send", PathOf("data.bin"), "c:DATA.BIN"}).status, 0);
    // Nobody makes files in /sys, whatever rights they have.
    const Ended fetched = Carry({"kermit", "receive", "c:DATA.BIN", "/sys/data.bin"});
    EXPECT_EQ(fetched.status, 1);
    EXPECT_THAT(fetched.err, HasSubstr("(/sys/data.bin: "));
    EXPECT_EQ(Carry({"send", "PRINT 7"}).out, "7\n") << "the printer is at its prompt";
}

INSTANTIATE_TEST_SUITE_P(Lines, TransferOver,
                         testing::Values(InProcess, OnPty, OnTcp, OnRemotePort), NameOf);

/// Over the lines on which a printer goes on between two programs of the host.
class TransferToWaiting : public TransferOver {};

TEST_P(TransferToWaiting, KermitByHandSendsNoCommand) {
    TypeLine("CHDIR \"c:\"");
    TypeLine("TRANSFER K \"R\"");
    const Ended sent = Carry(
        {"kermit", "send", PathOf("data.bin"), "HAND.BIN", "--manual", "--trace", PathOf("trace")});
    ASSERT_EQ(sent.status, 0) << sent.err;
    EXPECT_THAT(HostFile("trace"), testing::Not(HasSubstr("TRANSFER")));
    ExpectIdentical("c:HAND.BIN");
}

TEST_P(TransferToWaiting, BinaryCarriesAFileThereAndBackByEitherProtocol) {
    TypeLine("CHDIR \"c:\"");
    for (const auto& [protocol, letter] : {std::pair("zmodem", "Z"), std::pair("kermit", "K")}) {
        const std::string transfer = "TRANSFER " + std::string(letter);
        TypeLine(transfer + " \"R\"");
        const Ended sent = Carry({"binary", "send", PathOf("data.bin"), "--protocol", protocol});
        ASSERT_EQ(sent.status, 0) << sent.err;
        TypeLine(transfer + " \"S\",\"data.bin\"");
        const Ended fetched =
            Carry({"binary", "receive", PathOf("back.bin"), "--protocol", protocol});
        ASSERT_EQ(fetched.status, 0) << fetched.err;
        EXPECT_TRUE(HostFile("back.bin") == mContent) << protocol;
    }
}

INSTANTIATE_TEST_SUITE_P(Lines, TransferToWaiting, testing::Values(OnPty, OnTcp, OnRemotePort),
                         NameOf);

/// What the lines' devices have taken of a file goes on to the printer for seconds.
class TransferOverSlow : public TransferOver {};

TEST_P(TransferOverSlow, TheNextCommandAfterACancelFindsThePrinterAtItsPrompt) {
    WriteHostFile("long.bin", Content(300'000));
    const Ended ended = Interrupt({"kermit", "send", PathOf("long.bin"), "c:LONG.BIN"});
    EXPECT_EQ(ended.status, 130);
    const Ended next = Carry({"send", "PRINT 7"});
    EXPECT_EQ(next.out, "7\n") << next.err;
}

INSTANTIATE_TEST_SUITE_P(Lines, TransferOverSlow,
                         testing::Values(OnSlowPty, OnSlowTcp, OnSlowRemotePort), NameOf);

TEST_F(Transfer, ALineThatIsCutLeavesNoFile) {
    PrinterOnPty();
    ASSERT_EQ(Carry({"kermit", "send", PathOf("data.bin"), "c:DATA.BIN"}).status, 0);
    PrinterOnPty({"--fault", "cut=30000"});
    MakeFolder("in");
    const Ended fetched = Carry({"kermit", "receive", "c:DATA.BIN", PathOf("in/back.bin")});
    EXPECT_NE(fetched.status, 0);
    EXPECT_TRUE(FolderIsEmpty("in"));
}

TEST_F(Transfer, ResumeKeepsWhatCameAndTheNextTryCompletesIt) {
    PrinterOnPty();
    ASSERT_EQ(Carry({"kermit", "send", PathOf("data.bin"), "c:DATA.BIN"}).status, 0);
    MakeFolder("in");
    const Arguments receive{"kermit", "receive", "c:DATA.BIN", PathOf("in/back.bin"), "--resume"};
    PrinterOnPty({"--fault", "cut=30000"});
    EXPECT_NE(Carry(receive).status, 0);
    const std::string part = HostFile("in/back.bin.part");
    EXPECT_THAT(part.size(), testing::AllOf(testing::Gt(1000U), testing::Lt(Size)));
    EXPECT_TRUE(mContent.starts_with(part));
    EXPECT_FALSE(HasHostFile("in/back.bin"));
    PrinterOnPty();
    const Ended again = Carry(receive);
    ASSERT_EQ(again.status, 0) << again.err;
    EXPECT_TRUE(HostFile("in/back.bin") == mContent);
    EXPECT_FALSE(HasHostFile("in/back.bin.part"));
}

TEST_F(Transfer, ADiskThatIsFullIsTheStatedReasonAndLeavesNoFile) {
    PrinterOnPty();
    ASSERT_EQ(Carry({"kermit", "send", PathOf("data.bin"), "c:DATA.BIN"}).status, 0);
    MakeFolder("in");
    // No file of this shell's programs grows beyond 16 blocks of 1024 bytes.
    const Ended fetched =
        RunLimited(16, {"kermit", "receive", "c:DATA.BIN", PathOf("in/back.bin")});
    EXPECT_EQ(fetched.status, 1);
    EXPECT_THAT(fetched.err, HasSubstr("in/back.bin: file too large)"));
    EXPECT_TRUE(FolderIsEmpty("in"));
    EXPECT_EQ(Carry({"send", "PRINT 7"}).out, "7\n") << "the printer is at its prompt";
}

TEST_F(Transfer, CtrlCWhileSendingLeavesThePrinterAtItsPrompt) {
    PrinterOnPty({"--capacity", "2000000000"});
    WriteHostFile("big.bin", {});
    std::filesystem::resize_file(PathOf("big.bin"), 1'900'000'000); // takes no place here
    const Ended ended = Interrupt({"kermit", "send", PathOf("big.bin"), "c:BIG.BIN"});
    EXPECT_EQ(ended.status, 130);
    EXPECT_EQ(ended.Failure().at("error").at("description"), "Cancelled.");
    EXPECT_THAT(ended.out, testing::Not(HasSubstr("done")));
    EXPECT_EQ(Carry({"send", "PRINT 7"}).out, "7\n");
    EXPECT_THAT(Carry({"files", "c:"}).out, testing::Not(HasSubstr("BIG.BIN")));
}

TEST_F(Transfer, CtrlCWhileReceivingLeavesThePrinterAtItsPromptAndNoFile) {
    PrinterOnPty();
    WriteHostFile("big.bin", Content(7'000'000));
    ASSERT_EQ(Carry({"kermit", "send", PathOf("big.bin"), "c:BIG.BIN"}).status, 0);
    PrinterOnPty({"--fault", "stall=0.01:30"}); // shorter than a search waits
    MakeFolder("in");
    const Ended ended = Interrupt({"kermit", "receive", "c:BIG.BIN", PathOf("in/back.bin")});
    EXPECT_EQ(ended.status, 130);
    EXPECT_TRUE(FolderIsEmpty("in"));
    EXPECT_EQ(Carry({"send", "PRINT 7"}).out, "7\n");
}

TEST_F(Transfer, ATerminalShowsBarRateAndTimeLeft) {
    PrinterOnPty({"--paced", "--baud", "38400"});
    WriteHostFile("small.bin", Content(9000));
    const auto program = Start(OnPort({"kermit", "send", PathOf("small.bin"), "c:S.BIN"}),
                               qncomm::testing::Program::Stdio::Terminal);
    EXPECT_EQ(program->Wait(), 0);
    EXPECT_THAT(program->Out(), testing::ContainsRegex("\\[#+\\.*\\] [0-9]+ % Uploading S.BIN  "
                                                       "[0-9.]+ kB/s, 0:0[0-9] left"));
}

} // namespace
