#include "automation/CallMember.h"
#include "testing/core/ControlFixture.h"

namespace qncomm {
namespace {

using testing::ControlFixture;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Strings;

/// An argument as the cases below write it.
struct Given : Variant {
    using Variant::Variant;
    Given(const char* text) : Variant(text) {}
    Given(Variant variant) : Variant(std::move(variant)) {}
};

Variant LineText(const char* text) {
    return Variant(text, TextKind::Line);
}

class MemberCalls : public ControlFixture {
  protected:
    MemberCalls() {
        mModel = "R7A";
        mReplies["FILES\"ram:\""] = {"FILES ON ram:", "A.PRG          12    B.PRG          34",
                                     "1000 BYTES FREE  46 BYTES USED"};
    }

    MemberOutcome CallNamed(const std::string& name, const std::vector<Given>& arguments = {}) {
        return CallMember(*mControl, FindMember(ControlClass(), name, arguments.size()),
                          {arguments.begin(), arguments.end()});
    }
    Variant ResultOf(const std::string& name, const std::vector<Given>& arguments = {}) {
        return CallNamed(name, arguments).result;
    }
};

TEST_F(MemberCalls, AListingComesBackAsRecords) {
    Run();
    const Variant::Record first{{"Name", LineText("A.PRG")}, {"Size", 12}};
    const Variant::Record second{{"Name", LineText("B.PRG")}, {"Size", 34}};
    EXPECT_EQ(ResultOf("Files", {"ram"}), Variant(Variant::List{Variant(first), Variant(second)}));
    EXPECT_EQ(ResultOf("files", {"RAM:", "True", "0"}),
              Variant(Variant::List{Variant(first), Variant(second)}));
    EXPECT_EQ(ResultOf("DeviceFreeMem", {"ram:"}), LineText("1000"));
}

TEST_F(MemberCalls, NoListingIsNothing) {
    Run();
    Pointer::Screen().Set(PointerHourglass);
    EXPECT_TRUE(ResultOf("Files", {"ram:"}).IsNothing());
}

TEST_F(MemberCalls, ResultsKeepTheirTypes) {
    mReplies["PRINT FRE(0)"] = {"4711"};
    Run();
    EXPECT_EQ(ResultOf("Fre"), Variant(std::int32_t{4711}));
    EXPECT_EQ(ResultOf("ImagesCount"), Variant(std::int32_t{0}));
    EXPECT_EQ(ResultOf("PrinterType"), LineText("R7A"));
    EXPECT_EQ(ResultOf("DoAutoconnect"), Variant(true));
    EXPECT_TRUE(ResultOf("Clear").IsNothing());
    const Variant setup = ResultOf("Setup");
    const auto& items = std::get<Variant::List>(setup.value);
    EXPECT_EQ(items.front(), Variant(Variant::Record{{"Key", LineText("UART1,BAUDRATE")},
                                                     {"Value", LineText("9600")}}));
}

TEST_F(MemberCalls, APropertyIsReadWithoutAndSetWithAnArgument) {
    Run();
    CallNamed("BackColor", {"255"});
    EXPECT_EQ(ResultOf("BackColor"), Variant(std::int32_t{255}));
    CallNamed("toolbarvisible", {false});
    EXPECT_EQ(ResultOf("ToolbarVisible"), Variant(false));
    CallNamed("TerminalFontSize", {"9.75"});
    EXPECT_EQ(ResultOf("TerminalFontSize"), Variant("9.75"));
    EXPECT_EQ(ResultOf("RegSettings"), Variant(mSettings));
    CallNamed("RegSettings", {Variant(mSettings)});
    EXPECT_EQ(mControl->RegSettings(), mSettings);
}

TEST_F(MemberCalls, AFontIsARecordOrOneText) {
    Run();
    const Variant font(Variant::Record{{"Name", Variant("Courier New")}, {"Size", 9.1}});
    CallNamed("Font", {"Courier New, 9.1"});
    EXPECT_EQ(ResultOf("Font"), font);
    CallNamed("Font", {"Fixed,12"});
    CallNamed("Font", {font});
    EXPECT_EQ(mControl->TerminalFontName(), "Courier New");
    for (const char* wrong : {"Courier", "Courier,", "Courier,x", "Courier,9 pt"})
        EXPECT_RAISED(CallNamed("Font", {wrong}), RtTypeMismatch) << wrong;
    EXPECT_RAISED(CallNamed("Font", {"Courier,0"}), RtInvalidCall);
}

TEST_F(MemberCalls, WhatAMemberUsedIsWrittenBack) {
    Run();
    const MemberOutcome outcome = CallNamed("PrintFont", {"", "MS050RMN", "0"});
    EXPECT_TRUE(outcome.result.IsNothing());
    EXPECT_EQ(outcome.writtenBack, (Variant::Record{{"sText", LineText("The quick brown fox...")},
                                                    {"iSize", 12},
                                                    {"iWidth", 100},
                                                    {"iDir", 1}}));
    EXPECT_THAT(CallNamed("ChDir", {"ram:"}).writtenBack, IsEmpty());
}

TEST_F(MemberCalls, AModuleTellsItsTargetAndItsText) {
    Run();
    const MemberOutcome outcome =
        CallNamed("ModuleUpload", {{}, Variant("m.prg"), Variant("A=1\r\n")});
    EXPECT_EQ(outcome.result, Variant(Variant::List{}));
    EXPECT_EQ(outcome.writtenBack.at(0).second, LineText("ram:m.prg"));
    EXPECT_EQ(outcome.writtenBack.at(1).second, LineText("A=1\r\n"));
}

TEST_F(MemberCalls, NamesAreAListOrOneText) {
    Run();
    const auto merges = [&] {
        Strings lines = TakeCommands();
        std::erase_if(lines, [](const std::string& line) { return !line.starts_with("MERGE"); });
        return lines;
    };
    EXPECT_EQ(ResultOf("ProgramLink", {"ram:a, ram:b"}), Variant(true));
    EXPECT_THAT(merges(), ElementsAre("MERGE\"ram:a\"", "MERGE\"ram:b\""));
    CallNamed("ProgramLink", {Variant(Variant::List{Variant("ram:c")}), "10 REM"});
    EXPECT_THAT(merges(), ElementsAre("MERGE\"ram:c\""));
    EXPECT_RAISED(CallNamed("ProgramLink", {true}), RtTypeMismatch);
}

TEST_F(MemberCalls, AToolbarKeyIsATextOrAPosition) {
    SetMacro("F2", "0;A=1<CR>");
    Show();
    TakeSent();
    CallNamed("PressToolbarKey", {"F2"});
    CallNamed("PressToolbarKey", {std::int32_t{12}});
    EXPECT_EQ(TakeSent(), "A=1\rA=1\r");
    EXPECT_RAISED(CallNamed("PressToolbarKey", {std::int32_t{99}}), RtSubscript);
}

TEST_F(MemberCalls, WhatDoesNotFitIsRefusedBeforeTheMemberRuns) {
    Run();
    EXPECT_RAISED(CallNamed("Nada"), RtNoSuchMember);
    EXPECT_RAISED(CallNamed("SetBackColor", {"1"}), RtNoSuchMember);
    EXPECT_RAISED(CallNamed("CopyFile", {"a"}), RtArgumentMissing);
    EXPECT_RAISED(CallNamed("CopyFile", {{}, "b"}), RtArgumentMissing);
    EXPECT_RAISED(CallNamed("CopyFile", {"a", "b", "c"}), RtArgumentCount);
    EXPECT_RAISED(CallNamed("CursorColumn", {"1"}), RtArgumentCount);
    EXPECT_RAISED(CallNamed("CaptureToFile"), RtArgumentMissing);
    EXPECT_RAISED(CallNamed("Version", {"one"}), RtTypeMismatch);
    EXPECT_RAISED(CallNamed("Version", {""}), RtTypeMismatch);
    EXPECT_RAISED(CallNamed("Version", {"32768"}), RtOverflow);
    EXPECT_RAISED(CallNamed("BackColor", {"1e10"}), RtOverflow);
    EXPECT_RAISED(CallNamed("Files", {"ram:", "perhaps"}), RtTypeMismatch);
    EXPECT_RAISED(CallNamed("RegSettings", {"a text"}), RtTypeMismatch);
    EXPECT_RAISED(CallNamed("Files", {Variant(Variant::List{})}), RtTypeMismatch);
    EXPECT_EQ(TakeSent(), "");
}

TEST_F(MemberCalls, ArgumentsAreCheckedWithoutACallAndTheWrongOneIsNamed) {
    const SurfaceMember& files = FindMember(ControlClass(), "Files", 2);
    const auto wrong = [&](const std::vector<Given>& arguments) -> std::string {
        try {
            CheckArguments(files, {arguments.begin(), arguments.end()});
        } catch (const QNError& error) {
            return error.Description();
        }
        return {};
    };
    EXPECT_EQ(wrong({"ram:", "True"}), "");
    EXPECT_EQ(wrong({}), "Argument not optional: sDeviceName");
    EXPECT_EQ(wrong({"ram:", "perhaps"}), "Type mismatch: brefresh");
}

TEST_F(MemberCalls, WhatAMemberRaisesPasses) {
    EXPECT_RAISED(CallNamed("Fre"), RtObjectNotSet);
    Run();
    EXPECT_RAISED_FROM(CallNamed("Version", {"2"}), "1018 QNComm:Version");
}

} // namespace
} // namespace qncomm
