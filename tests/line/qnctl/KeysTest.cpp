#include "testing/programs/QnctlFixture.h"

#include <filesystem>

namespace {

using qncomm::testing::Arguments;
using qncomm::testing::Ended;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class FunctionKeys : public qncomm::testing::QnctlFixture {
  protected:
    void Set(const std::string& key, const std::string& kind, const std::string& argument) const {
        const Ended ended = Run({"macros", "set", key, kind, argument});
        ASSERT_EQ(ended.status, 0) << ended.err;
    }
    Ended Press(const std::string& key, Arguments more = {}) const {
        more.insert(more.begin(), {"key", key, "--port", "sim:R7G"});
        return Run(more);
    }
};

TEST_F(FunctionKeys, AreDefinedAndListed) {
    Set("F1", "text", "PRINT \xC3\xA5;B<CR>");
    Set("f2", "run", "\"/opt/a b\" c");
    const Ended list = Run({"macros", "list"});
    EXPECT_THAT(list.out, StartsWith("F1  text  PRINT \xC3\xA5;B<CR>\nF2  run   \"/opt/a b\" c\n"
                                     "F3  -\n"));
    const auto macros = Run({"macros", "list", "--json"}).Document()["macros"];
    EXPECT_EQ(macros.size(), 8U);
    EXPECT_EQ(macros[0]["argument"], "PRINT \xC3\xA5;B<CR>");
    EXPECT_TRUE(macros[7]["kind"].is_null());
    EXPECT_THAT(SettingsText(), HasSubstr("[FunctionKeys]"));
}

TEST_F(FunctionKeys, AFileIsKeptWithItsFullPath) {
    Set("F3", "file", "labels.txt");
    const auto macros = Run({"macros", "list", "--json"}).Document()["macros"];
    EXPECT_EQ(macros[2]["argument"], (std::filesystem::current_path() / "labels.txt").string());
}

TEST_F(FunctionKeys, OtherKeysAndKindsAreRefused) {
    EXPECT_EQ(Run({"macros", "set", "F9", "text", "x"}).status, 2);
    EXPECT_EQ(Run({"macros", "set", "F1", "shell", "x"}).status, 2);
    EXPECT_EQ(Run({"macros", "set", "F1", "text", "\xE2\x98\x83"}).status, 2);
    EXPECT_EQ(SettingsText(), "");
    EXPECT_EQ(Run({"macros", "set", "f1", "Text", "x"}).status, 0) << "in any case";
    EXPECT_THAT(SettingsText(), HasSubstr("F1=0;x"));
}

TEST_F(FunctionKeys, ATextIsSentAndTheAnswerShown) {
    Set("F1", "text", "PRINT 6*7<CR><LF>");
    const Ended ended = Press("F1");
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.out, "PRINT 6*7\r\n42\r\nOk\r\n");
    EXPECT_EQ(Press("11", {"--json"}).Document()["reply"], "PRINT 6*7\r\n42\r\nOk\r\n");
}

TEST_F(FunctionKeys, QuestionsAreAnsweredInTheirOrderAndOtherwiseEmpty) {
    Set("F1", "text", "PRINT 1&&?A&&+2&&?B&&<CR>");
    EXPECT_THAT(Press("F1", {"--answer", "0", "--answer", "5"}).out, StartsWith("PRINT 10+25\r\n"));
    EXPECT_THAT(Press("F1").out, StartsWith("PRINT 1+2\r\n"));
    EXPECT_THAT(Run({"key", "--answer", "0", "F1", "--port", "sim:R7G"}).out,
                StartsWith("PRINT 10+2\r\n"))
        << "an answer is one word, and the key's name is none";
}

TEST_F(FunctionKeys, AFileIsSentAndAProgramStarted) {
    WriteHostFile("lines.txt", "PRINT 5*5\r\n");
    Set("F1", "file", PathOf("lines.txt"));
    EXPECT_THAT(Press("F1").out, HasSubstr("25\r\n"));
    Set("F2", "run", "/no/such/program x");
    const Ended missing = Press("F2");
    EXPECT_THAT(missing.err, HasSubstr("Can't start '/no/such/program'."));
    EXPECT_THAT(missing.err, EndsWith("qnctl: The key F2 has done nothing.\n"));
    EXPECT_EQ(missing.status, 1);
    Set("F2", "run", "/bin/true x");
    EXPECT_EQ(Press("F2").status, 0);
    Set("F2", "file", PathOf("missing.txt"));
    EXPECT_EQ(Press("F2").status, 1);
}

TEST_F(FunctionKeys, ThatAskForAFileTakeTheGivenOne) {
    WriteHostFile("lines.txt", "PRINT 5*5\r\n");
    EXPECT_THAT(Press("UploadA", {"--file", PathOf("lines.txt")}).out, HasSubstr("25\r\n"));
    const Ended none = Press("UploadA");
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.out, "");
}

TEST_F(FunctionKeys, ThatThereAreNotAreRefusedWithTheOnesThatThereAre) {
    for (const char* key : {"F9", "0", "19", "Nada"}) {
        const Ended ended = Press(key);
        EXPECT_EQ(ended.status, 2) << key;
        EXPECT_THAT(ended.err, HasSubstr("CommSettings")) << key;
    }
}

TEST_F(FunctionKeys, NeedThePort) {
    EXPECT_EQ(Run({"key", "F1", "--port", "/dev/there-is-none"}).status, 4);
    EXPECT_EQ(Run({"key", "Clear", "--port", "/dev/there-is-none"}).status, 4);
}

TEST_F(FunctionKeys, TheTerminalIsCapturedAsItIsShown) {
    WriteHostFile("capture", "before\n");
    const Ended ended =
        Run({"terminal", "--capture", PathOf("capture"), "--port", "sim:R7G"}, "PRINT CHR$(128)\n");
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(HostFile("capture"), "before\nPRINT CHR$(128)\r\n\x80\r\nOk\r\n");
    const Ended nowhere =
        Run({"terminal", "--capture", PathOf("no/where"), "--port", "sim:R7G"}, "PRINT 1\n");
    EXPECT_EQ(nowhere.status, 1);
    EXPECT_EQ(nowhere.out, "");
    EXPECT_EQ(nowhere.err, "qnctl: error 76: " + PathOf("no/where")
                               + ": No such file or directory. [PDQComm]\n");
    const Ended full =
        Run({"terminal", "--capture", "/dev/full", "--port", "sim:R7G"}, "PRINT 5\n");
    EXPECT_EQ(full.out, "PRINT 5\r\n5\r\nOk\r\n");
    EXPECT_EQ(full.err, "The capture to /dev/full has ended: No space left on device.\n");
}

TEST_F(FunctionKeys, AreNamedByTheHelp) {
    const Ended help = Run({"key", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.out, HasSubstr("UploadA DownloadA UploadB DownloadB FunctionkeysSetup F1"));
    EXPECT_THAT(help.out, HasSubstr("--port"));
}

TEST_F(FunctionKeys, ACancelledQuestionEndsItsLine) {
    Set("F1", "text", "PRINT &&?N&&<CR>");
    const auto program =
        Start({"key", "F1", "--port", "sim:R7G"}, qncomm::testing::Program::Stdio::Terminal);
    ASSERT_TRUE(program->WaitForOut("Input new value for 'N'.")) << program->Out();
    program->Type("\x03");
    EXPECT_EQ(program->Wait(), 130);
    EXPECT_THAT(program->Out(), HasSubstr("\r\nqnctl: Cancelled.\r\n"));
}

TEST_F(FunctionKeys, ThatTransferSayWhatTheyWaitFor) {
    WriteHostFile("a.bin", "x");
    for (const Arguments& transfer :
         {Arguments{"key", "UploadB", "--file", PathOf("a.bin")},
          Arguments{"binary", "send", PathOf("a.bin"), "--protocol", "ZModem"}}) {
        Arguments command = transfer;
        command.insert(command.end(), {"--port", "sim:R7G"});
        const auto program = Start(command, qncomm::testing::Program::Stdio::Terminal);
        EXPECT_TRUE(program->WaitForOut("Waiting for the printer's side of the transfer"))
            << program->Out();
        program->Type("\x03");
        EXPECT_EQ(program->Wait(), 130);
    }
}

} // namespace
