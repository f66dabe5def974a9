#include "testing/programs/QnctlFixture.h"

#include <csignal>

namespace {

using qncomm::testing::Arguments;
using qncomm::testing::Ended;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class Calls : public qncomm::testing::QnctlFixture {
  protected:
    Ended OnPrinter(Arguments arguments, std::string_view input = {}) const {
        arguments.insert(arguments.end(), {"--port", "sim:R7G"});
        return Run(arguments, input);
    }
};

TEST_F(Calls, AMemberIsCalledByItsNameAndItsResultIsShown) {
    const Ended ended = OnPrinter({"call", "printertype"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.out, "R7G\n");
}

TEST_F(Calls, RecordsAreATableOrAList) {
    const Ended table = Run({"call", "Files", "ram:", "--port", "sim:R7A"});
    EXPECT_THAT(table.out, StartsWith("Name         Size\n"));
    EXPECT_THAT(table.out, HasSubstr("PRICES.DAT     34\n"));
    const Ended list = Run({"call", "Files", "ram", "--json", "--port", "sim:R7A"});
    EXPECT_EQ(list.Document()["result"][1]["Name"], "PRICES.DAT");
    EXPECT_EQ(list.Document()["result"][1]["Size"], 34);
    EXPECT_FALSE(list.Document().contains("arguments"));
}

TEST_F(Calls, ArgumentsGoByTheirPlaceOrByTheirName) {
    const Ended named = OnPrinter({"call", "ModuleUpload", "smoduletext:=PRINT \"\xC3\xA5:=\"",
                                   "sTargetPath:=tmp:M", "--json", "--show-args"});
    EXPECT_EQ(named.status, 0) << named.err;
    EXPECT_EQ(named.Document()["result"], nlohmann::json::array());
    EXPECT_EQ(named.Document()["arguments"]["sTargetPath"], "tmp:M");
    EXPECT_EQ(named.Document()["arguments"]["sModuleText"], "PRINT \"\xC3\xA5:=\"");
}

TEST_F(Calls, WhatAMemberUsedIsShownWhenAskedFor) {
    const Arguments call{"call", "PrintFont", "", "SW030RSN.1", "0"};
    EXPECT_EQ(OnPrinter(call).out, "");
    Arguments shown = call;
    shown.emplace_back("--show-args");
    EXPECT_EQ(OnPrinter(shown).out,
              "sText = The quick brown fox...\niSize = 12\niWidth = 100\niDir = 1\n");
}

TEST_F(Calls, WhatIsNoCallIsRefusedBeforeThePortIsTouched) {
    const std::vector<Arguments> wrong{{"call", "Nada"},
                                       {"call", "CopyFile", "ram:A"},
                                       {"call", "Clear", "1"},
                                       {"call", "KillQN", "\xE2\x98\x83"},
                                       {"call", "Version", "x"},
                                       {"call", "BackColor", "99999999999"},
                                       {"call", "RegSettings", "x"},
                                       {"call"}};
    for (Arguments call : wrong) {
        call.insert(call.end(), {"--port", "/dev/there-is-none"});
        const Ended ended = Run(call);
        EXPECT_EQ(ended.status, 2) << ended.err;
        EXPECT_EQ(ended.out, "");
    }
    EXPECT_EQ(OnPrinter({"call", "Nada", "--json"}).Failure()["error"]["number"], 438);
    EXPECT_EQ(OnPrinter({"call", "Files", "ram:", "maybe"}).err,
              "qnctl: Type mismatch: brefresh of "
              "Files(sDeviceName, brefresh:=False, bShowSystemFiles:=False)\n");
    EXPECT_EQ(OnPrinter({"call", "KillQN"}).err,
              "qnctl: Argument not optional: sFullFilename of KillQN(sFullFilename)\n");
    EXPECT_THAT(OnPrinter({"call", "Clear", "1"}).err, EndsWith(": Clear()\n"));
}

TEST_F(Calls, WhatTheControlAnswersAloneNeedsNoPort) {
    EXPECT_EQ(Run({"call", "BackColor"}).out, "15\n");
    EXPECT_EQ(Run({"call", "BackColor", "-1"}).status, 0) << "a negative number is no option";
    EXPECT_EQ(Run({"call", "DeviceUsedMem", "ram:"}).status, 1) << "nothing was listed";
    EXPECT_EQ(Run({"batch", "-"}, "BackColor 3\nBackColor\n").out, "3\n");
    EXPECT_EQ(Run({"batch", "-"}, "BackColor\nFre\n").status, 2) << "one of them needs it";
    EXPECT_EQ(Run({"call", "Fre"}).status, 2);
    EXPECT_EQ(Run({"call", "BackColor", "--port", "sim:R9"}).status, 2) << "a port was named";
}

TEST_F(Calls, OfABatchAreOneHundredThousandLinesAndNoneLongerThanAMebibyte) {
    const std::string comments = [] {
        std::string lines;
        for (int line = 0; line < 100'000; ++line)
            lines += "#\n";
        return lines;
    }();
    const std::string path = PathOf("batch");
    WriteHostFile("batch", comments);
    EXPECT_EQ(Run({"batch", path}).status, 0);
    WriteHostFile("batch", comments + "#\n");
    const Ended more = Run({"batch", path});
    EXPECT_EQ(more.status, 2);
    EXPECT_EQ(more.err, "qnctl: " + path + ":100001: a batch has at most 100000 lines.\n");
    EXPECT_EQ(Run({"batch", "-"}, comments + "#\n").status, 0) << "none of them is kept";
    const Ended longer = Run({"batch", "-"}, "#" + std::string(1 << 20, 'x') + "\n");
    EXPECT_EQ(longer.status, 1);
    EXPECT_THAT(longer.err, testing::HasSubstr("more than 1048576 bytes"));
}

TEST_F(Calls, WhatAMemberRaisesIsTold) {
    const Ended raised = OnPrinter({"call", "Version", "7"});
    EXPECT_EQ(raised.status, 1);
    EXPECT_EQ(raised.err, "qnctl: error 1018: Invalid Property Value [QNComm:Version]\n");
}

TEST_F(Calls, APortThatIsNotThereEndsWith4WhateverTheMember) {
    for (const char* member : {"Fre", "Reboot", "DoAutoconnect", "PasteCB"}) {
        const Ended ended = Run({"call", member, "--port", "/dev/there-is-none"});
        EXPECT_EQ(ended.status, 4) << member;
        EXPECT_THAT(ended.err, HasSubstr("there is no such device")) << member;
    }
}

TEST_F(Calls, TheTableShowsEveryMemberOnce) {
    const auto members = Run({"call", "--list", "--json"}).Document()["members"];
    EXPECT_EQ(members.size(), 76U);
    EXPECT_EQ(members[0]["name"], "Files");
    EXPECT_EQ(members[0]["parameters"][1]["default"], "False");
    const Ended text = Run({"call", "--list"});
    EXPECT_THAT(text.out,
                HasSubstr("Files(sDeviceName, brefresh:=False, bShowSystemFiles:=False)"));
}

class Batches : public Calls {
  protected:
    Ended Batch(std::string_view lines, Arguments more = {}) const {
        WriteHostFile("calls", lines);
        more.insert(more.begin(), {"batch", PathOf("calls")});
        return OnPrinter(more);
    }
    std::string At(int line) const { return PathOf("calls") + ":" + std::to_string(line); }
};

TEST_F(Batches, RunTheirLinesInOneSession) {
    const Ended ended = Batch("# a module, and where it went\r\n"
                              "\n"
                              "ModuleUpload \"\" \"tmp:A B\" \"PRINT \"\"x\"\"\"  # said\n"
                              "Files tmp:\n"
                              "  BackColor 255\n"
                              "BackColor\n"
                              "DeviceUsedMem tmp:");
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.out, "Name  Size\nA B     14\n255\n14\n");
}

TEST_F(Batches, ClaimThePortOnceForAll) {
    StartSimulator();
    WriteHostFile("calls", "Fre\nPrinterType\nChDir tmp:\nFre\n");
    const Ended ended =
        Run({"batch", PathOf("calls"), "--port", Printer(), "--trace", PathOf("trace")});
    EXPECT_EQ(ended.status, 0) << ended.err;
    const std::string trace = HostFile("trace");
    std::size_t searches = 0;
    for (std::size_t at = 0; (at = trace.find("HELLO", at)) != std::string::npos; ++at)
        ++searches;
    EXPECT_LE(searches, 3U) << "one question, its echo and its answer";
    EXPECT_THAT(trace, HasSubstr("PRINT FRE(0)"));
}

TEST_F(Batches, StopAtTheFirstErrorAndNameItsLine) {
    const Ended ended = Batch("PrinterType\nKillQN tmp:NONE\nPrinterType\n");
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.out, "R7G\n");
    EXPECT_EQ(ended.err,
              "qnctl: " + At(2) + ": error 61022: File not found [clsDatalink:GetPrinterError]\n");
}

TEST_F(Batches, GoOnWhenAskedToAndSayHowManyFailed) {
    const Ended ended = Batch("KillQN tmp:NONE\nPrinterType\nVersion 9\n", {"--keep-going"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.out, "R7G\n");
    EXPECT_THAT(ended.err, StartsWith("qnctl: " + At(1) + ": error 61022"));
    EXPECT_THAT(ended.err, HasSubstr(At(3) + ": error 1018"));
    EXPECT_THAT(ended.err, EndsWith("qnctl: 2 of 3 calls failed.\n"));
}

TEST_F(Batches, WithAMistakeInThemCallNothing) {
    for (const char* mistake : {"Nada", "CopyFile a", "Files \"ram:", "Clear 1", "Version x"}) {
        const Ended ended = Batch("PrinterType\n" + std::string(mistake) + "\n", {"--keep-going"});
        EXPECT_EQ(ended.status, 2) << mistake;
        EXPECT_EQ(ended.out, "") << mistake;
        EXPECT_THAT(ended.err, StartsWith("qnctl: " + At(2) + ": ")) << mistake;
    }
    EXPECT_EQ(OnPrinter({"batch", PathOf("missing")}).status, 2);
}

TEST_F(Batches, ComeFromTheInputToo) {
    const Ended ended = OnPrinter({"batch", "-"}, "PrinterType\nVersion 9\n");
    EXPECT_EQ(ended.out, "R7G\n");
    EXPECT_THAT(ended.err, StartsWith("qnctl: -:2: error 1018"));
}

TEST_F(Batches, OfAnInputThatDoesNotEndAreCancelled) {
    // The warning comes when signals are caught and before the input is read.
    WriteHostFile("settings", "[Ports]\nCOM3=nowhere\n");
    const auto program = Start({"batch", "-", "--settings", PathOf("settings")});
    program->Type("BackColor\n");
    ASSERT_TRUE(program->WaitForErr("COM3 in the settings")) << program->Err();
    ASSERT_TRUE(program->WaitForOut("15\n")) << program->Err();
    program->Signal(SIGINT);
    EXPECT_EQ(program->Wait(), 130);
}

TEST_F(Batches, OfTheInputAnswerEachLineBeforeTheNextOneIsWritten) {
    const auto program =
        Start({"batch", "-", "--keep-going", "--json", "--quiet", "--port", "sim:R7G"});
    program->Type("BackColor\n");
    ASSERT_TRUE(program->WaitForOut("\"result\":15}\n")) << program->Err();
    program->Type("PrinterType\n");
    ASSERT_TRUE(
        program->WaitForOut("\"place\":\"-:2\",\"member\":\"PrinterType\",\"result\":\"R7G\"}\n"))
        << program->Err();
    program->Type("Nada\n");
    ASSERT_TRUE(program->WaitForErr("\"-:3\"")) << program->Err();
    program->Type("FirmwareVersion\n");
    ASSERT_TRUE(program->WaitForOut("\"place\":\"-:4\"")) << program->Err();
    program->CloseInput();
    EXPECT_EQ(program->Wait(), 1);
    EXPECT_THAT(program->Err(), HasSubstr("1 of 4 calls failed."));
}

TEST_F(Batches, OfAClosedInputAreEmptyAndAClosedOutputIsNotThePort) {
    for (const char* closed : {"<&-", ">&-", "2>&-"}) {
        const auto program =
            Start({"batch", "-", "--port", "sim:R7G"}, qncomm::testing::Program::Stdio::Pipes,
                  {"/bin/sh", "-c", "exec \"$@\" " + std::string(closed), "sh"});
        if (closed != std::string("<&-")) program->Type("PrinterType\n");
        program->CloseInput();
        EXPECT_EQ(program->Wait(), 0) << closed << program->Err();
        EXPECT_EQ(program->Out(), closed == std::string("2>&-") ? "R7G\n" : "") << closed;
    }
}

TEST_F(Batches, AsJsonAreOneDocumentALine) {
    const Ended ended = Batch("PrinterType\nClear\n", {"--json"});
    EXPECT_EQ(ended.out,
              "{\"place\":\"" + At(1) + "\",\"member\":\"PrinterType\",\"result\":\"R7G\"}\n"
                  + "{\"place\":\"" + At(2) + "\",\"member\":\"Clear\",\"result\":null}\n");
}

TEST_F(Batches, GoOnAfterARestartOfThePrinterAndRefuseAfterTheControlsEnd) {
    const Ended ended = Batch("Fre\nReboot\nPrinterType\nTearDown\nBackColor\nPrinterType\n");
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.out, EndsWith("R7G\n15\n"));
    EXPECT_THAT(ended.err, HasSubstr(At(6) + ": error 91: "));
}

} // namespace
