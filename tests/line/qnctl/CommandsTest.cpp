#include "testing/programs/QnctlFixture.h"

#include <fstream>
#include <iterator>

namespace {

using nlohmann::json;
using qncomm::testing::Ended;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// Commands that change the printer, on one printer for the length of a test.
class Commands : public qncomm::testing::QnctlFixture {
  protected:
    void SetUp() override { StartSimulator(); }

    Ended Do(qncomm::testing::Arguments arguments, std::string_view input = {}) const {
        arguments.insert(arguments.end(), {"--port", Printer(), "--quiet"});
        return Run(arguments, input);
    }

    std::vector<std::string> FilesOf(const std::string& device) const {
        std::vector<std::string> names;
        const json document = Do({"files", device, "--json"}).Document();
        for (const json& file : document.at("files"))
            names.push_back(file.at("name"));
        return names;
    }

    std::string HostFile(const std::string& name) const {
        std::ifstream in(PathOf(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
};

TEST_F(Commands, CopyRenameAndKillFiles) {
    EXPECT_EQ(Do({"copy", "rom:DEMO.PRG", "tmp:A.PRG"}).status, 0);
    EXPECT_EQ(Do({"rename", "tmp:A.PRG", "c:B.PRG"}).status, 0);
    EXPECT_THAT(FilesOf("tmp:"), IsEmpty());
    EXPECT_THAT(FilesOf("c:"), Contains("B.PRG"));
    EXPECT_EQ(Do({"kill", "c:B.PRG"}).status, 0);
    EXPECT_THAT(FilesOf("c:"), Not(Contains("B.PRG")));
    const Ended again = Do({"kill", "c:B.PRG"});
    EXPECT_EQ(again.status, 1);
    EXPECT_THAT(again.err, HasSubstr("qnctl: error 61022: "));
}

TEST_F(Commands, FormatAsksAndWithoutATerminalTheAnswerIsNo) {
    ASSERT_EQ(Do({"copy", "rom:DEMO.PRG", "tmp:A.PRG"}).status, 0);
    const Ended asked = Do({"format", "tmp:"}, "y\n");
    EXPECT_EQ(asked.status, 1);
    EXPECT_EQ(asked.err, "Format: Erase all files on tmp:? [y/N] no\nqnctl: Nothing was erased.\n");
    EXPECT_THAT(FilesOf("tmp:"), ElementsAre("A.PRG"));
    EXPECT_EQ(Do({"format", "tmp:", "--no"}).status, 1);
    EXPECT_EQ(Do({"format", "tmp:", "--yes"}).status, 0);
    EXPECT_THAT(FilesOf("tmp:"), IsEmpty());
}

TEST_F(Commands, FormatIsAnsweredAtTheTerminal) {
    ASSERT_EQ(Do({"copy", "rom:DEMO.PRG", "tmp:A.PRG"}).status, 0);
    const auto program =
        Start({"format", "tmp:", "--port", Printer()}, qncomm::testing::Program::Stdio::Terminal);
    ASSERT_TRUE(program->WaitForOut("[y/N] ")) << program->Out();
    program->Type("y\n");
    EXPECT_EQ(program->Wait(), 0) << program->Out();
    EXPECT_THAT(FilesOf("tmp:"), IsEmpty());
}

TEST_F(Commands, FormatAllEndsAtTheFirstDeviceThatTheModelLacks) {
    const Ended ended = Do({"format-all", "--yes"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.err, HasSubstr("error 1010: "));
}

TEST_F(Commands, AProgramIsLinkedCheckedSavedAndListed) {
    WriteHostFile("part.prg", "10 PRINT \"part\"\n");
    WriteHostFile("header.prg", "1 REM made by a test\n");
    ASSERT_EQ(Do({"module", "upload", PathOf("part.prg"), "--target", "tmp:PART.PRG"}).status, 0);
    const Ended linked = Do({"module", "link", "--header", PathOf("header.prg"), "tmp:PART.PRG"});
    EXPECT_EQ(linked.status, 0) << linked.err;
    EXPECT_EQ(Do({"program", "save", "tmp:WHOLE.PRG"}).status, 0);
    EXPECT_THAT(FilesOf("tmp:"), Contains("WHOLE.PRG"));
    EXPECT_EQ(Do({"program", "list", PathOf("listing.prg")}).status, 0);
    EXPECT_EQ(HostFile("listing.prg"), "1 REM made by a test\r\n10 PRINT \"part\"\r\n");
    EXPECT_EQ(Do({"program", "new"}).status, 0);
    EXPECT_EQ(Do({"program", "check", "--json"}).Document(), json({{"runnable", true}}));
}

TEST_F(Commands, AMissingHeaderFileIsError53AndChangesNothing) {
    const Ended ended = Do({"module", "link", "--header", PathOf("none.prg"), "tmp:PART.PRG"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.err, HasSubstr("error 53: "));
}

TEST_F(Commands, ModuleErrorsAreLinesThatAnEditorCanJumpTo) {
    WriteHostFile("bad.prg", "A=1\nGARBAGE HERE\nPRINT A\n");
    const Ended ended = Do({"module", "upload", PathOf("bad.prg")});
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.err, HasSubstr(PathOf("bad.prg")
                                     + ":2: error 19: Syntax error\n"
                                       "    GARBAGE HERE\n"));
    EXPECT_THAT(FilesOf("tmp:"), IsEmpty());
    const json document = Do({"module", "upload", PathOf("bad.prg"), "--json"}).Document();
    EXPECT_EQ(document.at("errors")[0].at("line"), 2);
    EXPECT_EQ(document.at("errors")[0].at("text"), "GARBAGE HERE");
}

TEST_F(Commands, AMissingModuleIsTheSystemsOwnError) {
    const Ended ended = Do({"module", "upload", PathOf("none.prg")});
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.err, AllOf(HasSubstr("qnctl: error "), HasSubstr("[")));
}

TEST_F(Commands, FreeMemoryIsANumber) {
    const Ended ended = Do({"fre", "--json"});
    EXPECT_GT(ended.Document().at("bytesFree").get<int>(), 0);
}

TEST_F(Commands, SetupIsListedChangedWrittenAndLoaded) {
    const auto baudrate = [&] {
        const json setup = Do({"setup", "list", "--json"}).Document().at("setup");
        return setup.at("SER-COM,UART2,BAUDRATE");
    };
    EXPECT_EQ(baudrate(), "9600");
    EXPECT_EQ(Do({"setup", "write", "tmp:OLD.SET"}).status, 0);
    EXPECT_EQ(Do({"setup", "set", "ser-com,uart2,baudrate", "19200"}).status, 0);
    EXPECT_EQ(baudrate(), "19200");
    EXPECT_EQ(Do({"setup", "load", "tmp:OLD.SET"}).status, 0);
    EXPECT_EQ(baudrate(), "9600");
}

TEST_F(Commands, FontsAreListedWithAndWithoutTheBuiltInOnes) {
    const json all = Do({"fonts", "--json"}).Document().at("fonts");
    const json filtered = Do({"fonts", "--filter", "--json"}).Document().at("fonts");
    EXPECT_GT(all.size(), filtered.size());
}

TEST_F(Commands, AFileThatIsNoImageIsError1015) {
    WriteHostFile("no.pcx", "this is no image");
    EXPECT_THAT(Do({"image", "install", PathOf("no.pcx")}).err, HasSubstr("error 1015: "));
    EXPECT_THAT(Do({"image", "install", PathOf("none.pcx")}).err, HasSubstr("error 1013: "));
}

TEST_F(Commands, AFontFileThatIsMissingIsError1016) {
    EXPECT_THAT(Do({"font", "install", PathOf("none.ttf")}).err, HasSubstr("error 1016: "));
}

TEST_F(Commands, FileloadSendsTheBytesOfAFile) {
    WriteHostFile("RAW.BIN", std::string("\x00\x1A\x11\xFF\r\n", 6));
    ASSERT_EQ(Do({"chdir", "tmp:"}).status, 0); // the printer puts it on its current device
    EXPECT_EQ(Do({"fileload", PathOf("RAW.BIN")}).status, 0);
    const json document = Do({"files", "tmp:", "--json"}).Document();
    json found;
    for (const json& file : document.at("files"))
        if (file.at("name") == "RAW.BIN") found = file;
    ASSERT_TRUE(found.is_object());
    EXPECT_EQ(found.at("size"), 6);
}

TEST_F(Commands, ATextThatThePrinterCannotWriteIsRefusedBeforeAnythingIsSent) {
    const Ended ended = Do({"kill", "tmp:\u4E2D.PRG"});
    EXPECT_EQ(ended.status, 2);
    EXPECT_THAT(ended.err, HasSubstr("Windows-1252"));
}

TEST_F(Commands, RebootWaitsUntilThePrinterAnswersAgain) {
    StartSimulator({"--boot-ms", "100"});
    const Ended ended = Do({"reboot", "--json"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.Document(), json({{"rebooted", true}}));
    EXPECT_EQ(Do({"send", "PRINT 7"}).out, "7\n");
}

} // namespace
