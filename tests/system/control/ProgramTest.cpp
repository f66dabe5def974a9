// Programs and modules through the control.

#include "testing/stack/AssembledFixture.h"

#include "common/RuntimeErrors.h"
#include "common/modErrorHandling.h"
#include "testing/core/ExpectRaised.h"

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class Programs : public AssembledFixture {
  protected:
    /// On a printer that leaves its labels in a folder.
    Programs() { Assemble("sim:R7G?labels=" + mFolder.File("labels")); }

    /// Starts the program, which nobody waits for, and gives it its time: the printer in this
    /// program lives through it when the port is opened again.
    void Run() {
        Control().RunProgram();
        mReactor.Pass(1000);
        Control().Fre();
    }
    bool Printed() const { return mFolder.Has("labels/label-0001.png"); }
};

constexpr const char* PrintsALabel = "10 PP 10,10\r\n20 FT \"SW080BSN.1\"\r\n30 PT \"X\"\r\n40 PF";

TEST_F(Programs, AProgramIsTypedInRunAndFetched) {
    const std::int32_t before = Control().Fre();
    EXPECT_TRUE(Program("L.PRG", PrintsALabel)->IsEmpty());
    EXPECT_LT(Control().Fre(), before);
    EXPECT_THAT(FilesOn("tmp:"), Contains("L.PRG"));
    EXPECT_FALSE(Printed());
    Run();
    EXPECT_TRUE(Printed());
    EXPECT_EQ(Listing(), std::string(PrintsALabel) + "\r\n");
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
}

TEST_F(Programs, CheckingAProgramDoesNotRunIt) {
    Program("L.PRG", PrintsALabel);
    EXPECT_TRUE(Control().IsProgramRunable());
    EXPECT_FALSE(Printed());
    EXPECT_EQ(Listing(), std::string(PrintsALabel) + "\r\n");
    Program("M.PRG", "1 REM a line of its own\r\n20 END");
    EXPECT_FALSE(Control().IsProgramRunable());
}

TEST_F(Programs, ANewProgramIsEmpty) {
    Program("L.PRG", PrintsALabel);
    Control().NewProgram();
    EXPECT_EQ(Listing(), "");
    Run();
    EXPECT_FALSE(Printed());
    EXPECT_THAT(FilesOn("tmp:"), Contains("L.PRG")) << "the module is still stored";
}

TEST_F(Programs, AModuleComesFromAFileAndTheNamesThatWereUsedAreWrittenBack) {
    ModuleUploadArgs args;
    args.sSourcePath = mFolder.Write("mod.prg", "10 REM from a file\r\n20 END\r\n");
    EXPECT_TRUE(Control().ModuleUpload(args)->IsEmpty());
    EXPECT_EQ(args.sTargetPath, "tmp:mod.prg");
    EXPECT_EQ(args.sModuleText, "10 REM from a file\r\n20 END\r\n");
    EXPECT_THAT(FilesOn("tmp:"), Contains("mod.prg"));
    ModuleUploadArgs none;
    EXPECT_EQ(NumberRaisedBy([&] { Control().ModuleUpload(none); }), ErrModuleName);
    ModuleUploadArgs homeless{.sSourcePath = {}, .sTargetPath = {}, .sModuleText = "10 END"};
    EXPECT_EQ(NumberRaisedBy([&] { Control().ModuleUpload(homeless); }), ErrModuleName);
    none.sSourcePath = mFolder.Write("empty.prg", "");
    EXPECT_EQ(NumberRaisedBy([&] { Control().ModuleUpload(none); }), ErrModuleEmpty);
}

TEST_F(Programs, ErrorsInAModuleNameTheirLinesAndNothingIsStored) {
    ModuleUploadArgs args;
    args.sSourcePath =
        mFolder.Write("bad.prg", "10 PRINT 1\r\n20 PRIMT 2\r\n30 END\r\n40 GOTO\r\n");
    const auto errors = Control().ModuleUpload(args);
    ASSERT_EQ(errors->Count(), 2U);
    EXPECT_EQ(errors->Item(1)->QNErrInLine, 2);
    EXPECT_EQ(errors->Item(1)->QNErrCode, 19);
    EXPECT_EQ(errors->Item(1)->QNErrDesc, "Syntax error");
    EXPECT_EQ(errors->Item(1)->QNText, "20 PRIMT 2");
    EXPECT_EQ(errors->Item(1)->QNModuleName, args.sSourcePath);
    EXPECT_EQ(errors->Item(2)->QNErrInLine, 4);
    EXPECT_EQ(errors->Item(args.sSourcePath + ":4"), errors->Item(2));
    EXPECT_THAT(FilesOn("tmp:"), Not(Contains("bad.prg")));
    EXPECT_GT(Control().Fre(), 0) << "the printer is at its prompt";
}

TEST_F(Programs, TypingAModuleTellsItsProgressAndCanBeStopped) {
    std::string text;
    for (int line = 1; line <= 200; ++line)
        text += std::to_string(line * 10) + " REM a line\r\n";
    std::vector<std::int16_t> progress;
    const Subscription status =
        Control().StatusEvent.Connect([&](std::string&, std::int16_t percent, bool& cancel) {
            progress.push_back(percent);
            cancel = percent >= 50;
        });
    EXPECT_TRUE(Program("LONG.PRG", text)->IsEmpty());
    EXPECT_THAT(progress, Contains(50));
    const std::string stored = Listing();
    EXPECT_THAT(stored, HasSubstr("10 REM a line\r\n"));
    EXPECT_THAT(stored, Not(HasSubstr("2000 REM a line\r\n")));
}

TEST_F(Programs, ModulesAreLinkedBehindAHeader) {
    Program("A.PRG", "100 PP 10,10");
    Program("B.PRG", "200 PX 100,100,5\r\n210 PF");
    Collection<std::string> modules;
    modules.Add("tmp:A.PRG");
    modules.Add("B.PRG");
    EXPECT_TRUE(Control().ProgramLink(modules, "5 REM head"));
    EXPECT_EQ(Listing(), "5 REM head\r\n100 PP 10,10\r\n200 PX 100,100,5\r\n210 PF\r\n");
    Run();
    EXPECT_TRUE(Printed());
    modules.Add("NONE.PRG");
    EXPECT_FALSE(Control().ProgramLink(modules));
}

TEST_F(Programs, AListingThatCannotBeWrittenRaisesTheRuntimesNumber) {
    Program("L.PRG", PrintsALabel);
    EXPECT_EQ(NumberRaisedBy([&] { Control().UploadQNProgram(mFolder.File("no/where.txt")); }),
              RtPathNotFound);
    EXPECT_EQ(Listing(), std::string(PrintsALabel) + "\r\n");
}

} // namespace
} // namespace qncomm::testing
