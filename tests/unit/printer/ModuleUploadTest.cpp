#include "PrinterFixture.h"
#include "testing/core/ScratchFolder.h"

namespace qncomm::testing {
namespace {

class ModuleUpload : public PrinterFixture {
  protected:
    /// From the old file's deletion to the typing mode.
    void ScriptBegin(const std::string& target, const Lines& killReply = {}) {
        Script("KILL \"" + target + "\"", killReply);
        mSerial.Handshake(); // the upload's own claim
        Script("NEW");
        mSerial.Expect("SYSVAR(18)=8:SYSVAR(19)=2:IMMEDIATE OFF\r\n");
    }
    void ScriptTyped(const Lines& lines) {
        for (const std::string& line : lines)
            mSerial.Expect(line + "\r\n");
    }
    /// Errors come while lines are typed, "Ok" after the last of the two closing lines.
    void ScriptEnd(const std::string& reply = "Ok\r\n") {
        mSerial.Expect("IMMEDIATE ON\r\n");
        mSerial.Expect("SYSVAR(18)=-1:SYSVAR(19)=1\r\n").Reply(reply);
    }
    void ScriptSave(const std::string& target) { Script("SAVE\"" + target + "\",L"); }

    std::shared_ptr<ModuleErrors> Upload(std::string target, std::string text) {
        return mQuorin.ModuleUpload("", target, text);
    }

    ScratchFolder mFolder;
};

TEST_F(ModuleUpload, TypesATextAndSavesItWithoutTouchingHostFiles) {
    KnowCleanDevices("R7G");
    ScriptBegin("tmp:M.PRG");
    ScriptTyped({"10 REM a", "20 END"});
    ScriptEnd();
    ScriptSave("tmp:M.PRG");
    std::string target = "M.PRG";
    std::string text = "  10 REM a \r\n20 END";
    const auto errors = mQuorin.ModuleUpload("", target, text);
    EXPECT_TRUE(errors->IsEmpty());
    EXPECT_EQ(target, "tmp:M.PRG") << "the caller sees the device";
    EXPECT_EQ(text, "  10 REM a \r\n20 END");
    EXPECT_THAT(DirtyDevices(), ElementsAre("tmp:"));
    EXPECT_THAT(mMessages,
                ElementsAre("Transfering Module tmp:M.PRG 0", "Transfering Module tmp:M.PRG 50",
                            "Transfering Module tmp:M.PRG 100", "Ready -1"));
}

TEST_F(ModuleUpload, ReadsAFileAndReturnsItsText) {
    KnowCleanDevices("R7A");
    const std::string path = mFolder.Write("Lib.prg", "10 REM\r\n");
    ScriptBegin("ram:Lib.prg");
    ScriptTyped({"10 REM", ""});
    ScriptEnd();
    ScriptSave("ram:Lib.prg");
    std::string target;
    std::string text;
    EXPECT_TRUE(mQuorin.ModuleUpload(path, target, text)->IsEmpty());
    EXPECT_EQ(target, "ram:Lib.prg");
    EXPECT_EQ(text, "10 REM\r\n");
}

TEST_F(ModuleUpload, ATextThatIsGivenWinsOverTheFile) {
    KnowCleanDevices("R7A");
    const std::string path = mFolder.Write("Lib.prg", "10 REM from the file");
    ScriptBegin("card1:X");
    ScriptTyped({"10 REM given"});
    ScriptEnd();
    ScriptSave("card1:X");
    std::string target = "card1:X";
    std::string text = "10 REM given";
    mQuorin.ModuleUpload(path, target, text);
}

TEST_F(ModuleUpload, LineFeedsAloneDoNotEndALine) {
    KnowCleanDevices("R7A");
    ScriptBegin("ram:M");
    mSerial.Expect("10 REM\n20 END\r\n");
    ScriptEnd();
    ScriptSave("ram:M");
    Upload("M", "10 REM\n20 END");
}

TEST_F(ModuleUpload, ALongLineArrivesWhole) {
    KnowCleanDevices("R7A");
    const std::string line = "10 REM " + std::string(100'000, 'x');
    mSerial.mDrainPerMs = 1;
    ScriptBegin("ram:M");
    ScriptTyped({line});
    ScriptEnd();
    ScriptSave("ram:M");
    EXPECT_TRUE(Upload("M", line)->IsEmpty());
}

TEST_F(ModuleUpload, ATargetWithoutADeviceStaysSoOnAModelWithoutAWorkDevice) {
    KnowCleanDevices("R7A");
    Reconnect("R7C");
    Script("KILL \"M\"");
    Script("FILES \".\"", {"ram:"});
    mSerial.Handshake();
    Script("NEW");
    mSerial.Expect("SYSVAR(18)=8:SYSVAR(19)=2:IMMEDIATE OFF\r\n");
    ScriptTyped({"10 REM"});
    ScriptEnd();
    ScriptSave("M");
    Script("FILES \".\"", {"ram:"});
    Upload("M", "10 REM");
}

TEST_F(ModuleUpload, MissingNamesAndEmptyFilesAreRefusedBeforeAnythingIsSent) {
    std::string none;
    std::string target = "ram:M";
    std::string text = "10 REM";
    EXPECT_RAISED_FROM(mQuorin.ModuleUpload("", none, none), "1020 clsQuorin, ModuleUpload");
    EXPECT_RAISED_FROM(mQuorin.ModuleUpload(mFolder.File("none"), target, none),
                       "1020 clsQuorin, ModuleUpload");
    EXPECT_RAISED_FROM(mQuorin.ModuleUpload(mFolder.File(""), target, none),
                       "1020 clsQuorin, ModuleUpload");
    EXPECT_RAISED_FROM(mQuorin.ModuleUpload("", none, text), "1020 clsQuorin,DownloadQNModule");
    const std::string empty = mFolder.Write("empty.prg", "");
    EXPECT_RAISED_FROM(mQuorin.ModuleUpload(empty, none, none), "1021 clsQuorin,DownloadQNModule");
    EXPECT_EQ(mSerial.mSent, "");
}

TEST_F(ModuleUpload, ErrorsOfTheOldFilesDeletionAreIgnored) {
    KnowCleanDevices("R7A");
    ScriptBegin("ram:M", {"Error 1030: File not found"});
    ScriptTyped({"10 REM"});
    ScriptEnd();
    ScriptSave("ram:M");
    Upload("ram:M", "10 REM");
    mSerial.Handshake().Expect("KILL \"ram:M\"\r\n"); // no answer at all
    mSerial.Handshake();
    Script("NEW");
    mSerial.Expect("SYSVAR(18)=8:SYSVAR(19)=2:IMMEDIATE OFF\r\n");
    ScriptTyped({"10 REM"});
    ScriptEnd();
    ScriptSave("ram:M");
    Upload("ram:M", "10 REM");
}

TEST_F(ModuleUpload, ARefusedPortTypesAndSavesNothing) {
    Know("R7A");
    RefusePort();
    EXPECT_TRUE(Upload("ram:M", "10 REM")->IsEmpty());
    EXPECT_THAT(mMessages, ElementsAre("Ready -1"));
    GrantPort();
}

// -- Errors

TEST_F(ModuleUpload, CollectsErrorsAndSavesNothing) {
    KnowCleanDevices("R7A");
    const std::string path = mFolder.Write("m.prg", "10 PRIMT\r\n20 END\r\n30 GOTTO");
    ScriptBegin("ram:m.prg");
    ScriptTyped({"10 PRIMT", "20 END", "30 GOTTO"});
    ScriptEnd("Error 19 in line 1: Syntax error\r\nError 5: no line\r\n"
              "Error 21 in line 3: What?\r\nError 7 in line 9: beyond\r\nOk\r\n");
    std::string target;
    std::string text;
    const auto errors = mQuorin.ModuleUpload(path, target, text);
    ASSERT_EQ(errors->Count(), 3U);
    const clsQNModuleError& first = *errors->Item(1);
    EXPECT_EQ(first.QNModuleName, path);
    EXPECT_EQ(first.QNErrCode, 19);
    EXPECT_EQ(first.QNErrInLine, 1);
    EXPECT_EQ(first.QNErrDesc, "Syntax error");
    EXPECT_EQ(first.QNText, "10 PRIMT");
    EXPECT_EQ(errors->Item(path + ":3")->QNText, "30 GOTTO");
    EXPECT_EQ(errors->Item(3)->QNText, "") << "a line beyond the module's end";
    EXPECT_EQ(mMessages.back(), "Ready -1");
}

TEST_F(ModuleUpload, TwoErrorsInOneLineCollide) {
    KnowCleanDevices("R7A");
    ScriptBegin("ram:M");
    ScriptTyped({"10 PRIMT"});
    ScriptEnd("Error 19 in line 1: a\r\nError 20 in line 1: b\r\nOk\r\n");
    EXPECT_RAISED(Upload("ram:M", "10 PRIMT"), 457);
    EXPECT_EQ(mLink.UseCount(), 0);
}

TEST_F(ModuleUpload, OfManyErrorsIsCancelledInTheMiddle) {
    KnowCleanDevices("R7A");
    ScriptBegin("ram:M");
    ScriptTyped({"10 PRIMT"});
    std::string errors;
    for (int line = 1; line <= 10'000; ++line)
        errors += "Error 19 in line " + std::to_string(line) + ": a\r\n";
    ScriptEnd(errors + "Ok\r\n");
    const CancelOnceThePortIsGivenBack cancel(mLoop, mLink);
    EXPECT_THROW(Upload("ram:M", "10 PRIMT"), OperationCancelled);
}

TEST_F(ModuleUpload, ErrorsBehindAnEarlyOkAreNotMissed) {
    KnowCleanDevices("R7A");
    Script("KILL \"ram:M\"");
    mSerial.Handshake();
    Script("NEW");
    mSerial.Expect("SYSVAR(18)=8:SYSVAR(19)=2:IMMEDIATE OFF\r\n").Reply("Ok\r\n");
    ScriptTyped({"10 PRIMT"});
    mSerial.Expect("IMMEDIATE ON\r\n").Reply("Error 19 in li", 300).Reply("ne 1: x\r\nOk\r\n", 200);
    mSerial.Expect("SYSVAR(18)=-1:SYSVAR(19)=1\r\n").Reply("Ok\r\n", 600);
    EXPECT_EQ(Upload("ram:M", "10 PRIMT")->Count(), 1U);
    Script("PRINT FRE(0)", {"12"});
    EXPECT_EQ(mQuorin.Fre(), 12) << "the next reply is its own";
}

TEST_F(ModuleUpload, ASilentPrinterTimesOut) {
    KnowCleanDevices("R7A");
    ScriptBegin("ram:M");
    ScriptTyped({"10 REM"});
    ScriptEnd("");
    EXPECT_RAISED(Upload("ram:M", "10 REM"), ErrInputTimeout);
}

TEST_F(ModuleUpload, AnErrorWhileTypingLeavesTheTypingMode) {
    KnowCleanDevices("R7A");
    mOnStatus = [](const std::string&, std::int16_t progress) {
        if (progress == 50) throw QNError(440, "host", "handler failed");
        return false;
    };
    ScriptBegin("ram:M");
    ScriptTyped({"10 REM", "20 REM"});
    mSerial.Expect("IMMEDIATE ON\r\n").Expect("SYSVAR(18)=-1:SYSVAR(19)=1\r\n");
    EXPECT_RAISED(Upload("ram:M", "10 REM\r\n20 REM"), 440);
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(ModuleUpload, ACancelOnALineThatTakesNothingIsObeyedAtOnce) {
    KnowCleanDevices("R7A");
    std::int64_t cancelled = 0;
    mOnStatus = [&](const std::string&, std::int16_t progress) {
        if (progress != 0) return false;
        mSerial.mDrainPerMs = 0;
        mLoop.After(300, [&] {
            cancelled = mLoop.NowMs();
            throw OperationCancelled();
        });
        return false;
    };
    ScriptBegin("ram:M");
    ScriptTyped({"10 REM"});
    mSerial.Expect(")(\r\n").Expect("IMMEDIATE ON\r\nSYSVAR(18)=-1:SYSVAR(19)=1\r\n");
    EXPECT_THROW(Upload("ram:M", "10 REM\r\n20 REM"), OperationCancelled);
    EXPECT_LE(mLoop.NowMs() - cancelled, 150);
}

// -- Progress and cancelling

TEST_F(ModuleUpload, ProgressIsReportedInTensAndEachOnce) {
    KnowCleanDevices("R7A");
    for (const int count : {10, 200, 1000}) {
        mMessages.clear();
        Lines lines;
        std::string text;
        for (int i = 1; i <= count; ++i) {
            lines.push_back(std::to_string(i) + " REM");
            text += (i > 1 ? "\r\n" : "") + lines.back();
        }
        ScriptBegin("ram:M");
        ScriptTyped(lines);
        ScriptEnd();
        ScriptSave("ram:M");
        Upload("ram:M", text);
        Lines expected;
        for (int percent = 0; percent <= 100; percent += 10)
            expected.push_back("Transfering Module ram:M " + std::to_string(percent));
        expected.emplace_back("Ready -1");
        EXPECT_EQ(mMessages, expected) << count << " lines";
    }
}

TEST_F(ModuleUpload, ACancelEndsTheTypingAndSavesWhatWasTyped) {
    KnowCleanDevices("R7A");
    mOnStatus = [](const std::string&, std::int16_t progress) { return progress == 50; };
    ScriptBegin("ram:M");
    ScriptTyped({"10 REM", "20 REM", "30 REM"});
    ScriptEnd();
    ScriptSave("ram:M");
    EXPECT_TRUE(Upload("ram:M", "10 REM\r\n20 REM\r\n30 REM\r\n40 REM")->IsEmpty());
    EXPECT_EQ(mMessages.back(), "Ready -1");
}

TEST_F(ModuleUpload, ACancelAtTheStartTypesNothing) {
    KnowCleanDevices("R7A");
    mOnStatus = [](const std::string&, std::int16_t progress) { return progress == 0; };
    ScriptBegin("ram:M");
    ScriptEnd();
    ScriptSave("ram:M");
    Upload("ram:M", "10 REM\r\n20 REM");
}

TEST_F(ModuleUpload, AHandlerIsRefusedThePortWhileLinesAreTyped) {
    KnowCleanDevices("R7A");
    mOnStatus = [this](const std::string& text, std::int16_t) {
        if (text != "Ready") {
            EXPECT_FALSE(mQuorin.PortOpen());
        }
        return false;
    };
    ScriptBegin("ram:M");
    ScriptTyped({"10 REM"});
    ScriptEnd();
    ScriptSave("ram:M");
    Upload("ram:M", "10 REM");
}

} // namespace
} // namespace qncomm::testing
