#include "SurfaceReader.h"
#include "automation/SurfaceMembers.h"
#include "testing/core/ControlFixture.h"

#include <fstream>
#include <iterator>
#include <map>

namespace qncomm {
namespace {

using testing::ControlFixture;
using testing::DeclaredMember;
using testing::DeclaredMembers;
using testing::DeclaredParameter;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Strings;

/// What the control's header declares between the events and what is there for special hosts.
std::vector<DeclaredMember> Declared() {
    std::ifstream in(QN_SOURCE_DIR "/src/control/include/control/QNComm.h", std::ios::binary);
    const std::string header{std::istreambuf_iterator<char>(in), {}};
    return DeclaredMembers(header, "// -- Printer storage", "// -- For hosts that need");
}

/// Such as "let BackColor(lColor)".
std::string Signature(const std::string& name, bool let, const Strings& parameters) {
    std::string text = (let ? "let " : "") + name + "(";
    for (const std::string& parameter : parameters)
        text += (text.back() == '(' ? "" : ", ") + parameter;
    return text + ")";
}

Strings DeclaredSignatures() {
    Strings signatures;
    for (const DeclaredMember& member : Declared()) {
        Strings names;
        for (const DeclaredParameter& parameter : member.parameters)
            names.push_back(parameter.name);
        signatures.push_back(Signature(member.name, member.isLet, names));
    }
    return signatures;
}

Strings TableSignatures() {
    Strings signatures;
    for (const SurfaceMember& member : SurfaceMembers()) {
        Strings names;
        for (const MemberParameter& parameter : member.parameters)
            names.emplace_back(parameter.name);
        signatures.push_back(
            Signature(std::string(member.name), member.kind == MemberKind::Let, names));
    }
    return signatures;
}

TEST(MemberTable, HasARowForEveryMemberThatTheControlDeclaresInTheirOrder) {
    EXPECT_GT(Declared().size(), 60U);
    EXPECT_THAT(TableSignatures(), ::testing::ElementsAreArray(DeclaredSignatures()));
}

const std::multimap<std::string, MemberType>& TypesOfDeclarations() {
    static const std::multimap<std::string, MemberType> types{
        {"string", MemberType::PrinterText},
        {"string", MemberType::HostText},
        {"string_view", MemberType::PrinterText},
        {"string_view", MemberType::HostText},
        {"string_view", MemberType::KeyIndex},
        {"bool", MemberType::Boolean},
        {"int16_t", MemberType::Integer},
        {"int32_t", MemberType::Long},
        {"Collection<string>", MemberType::Names},
        {"TerminalFont", MemberType::Font},
        {"shared_ptr<RegSettings>", MemberType::Settings}};
    return types;
}

bool Agree(const std::string& declared, MemberType type) {
    const auto [first, last] = TypesOfDeclarations().equal_range(declared);
    return std::any_of(first, last, [&](const auto& known) { return known.second == type; });
}

TEST(MemberTable, TakesOfEachParameterWhatTheControlTakes) {
    const auto declared = Declared();
    const auto& rows = SurfaceMembers();
    ASSERT_EQ(rows.size(), declared.size());
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t p = 0; p < rows[i].parameters.size(); ++p)
            EXPECT_TRUE(Agree(declared[i].parameters[p].type, rows[i].parameters[p].type))
                << rows[i].name << ": " << declared[i].parameters[p].type << ' '
                << rows[i].parameters[p].name;
}

/// A default as the header writes it, as the table's text.
std::string TextOf(const std::string& declared) {
    static const std::map<std::string, std::string> spellings{
        {"false", "False"}, {"{}", ""}, {"BinaryZModem", std::to_string(BinaryZModem)}};
    const auto found = spellings.find(declared);
    return found != spellings.end() ? found->second : declared;
}

TEST(MemberTable, LeavesOutWhatTheControlLetsOutAndTakesTheSameInItsPlace) {
    const auto declared = Declared();
    const auto& rows = SurfaceMembers();
    ASSERT_EQ(rows.size(), declared.size());
    int defaults = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].name == "PrintFont" || rows[i].name == "ModuleUpload") continue;
        for (std::size_t p = 0; p < rows[i].parameters.size(); ++p) {
            const auto& parameter = rows[i].parameters[p];
            const std::string& written = declared[i].parameters[p].byDefault;
            EXPECT_EQ(parameter.byDefault.has_value(), !written.empty()) << rows[i].name;
            if (!parameter.byDefault) continue;
            EXPECT_EQ(*parameter.byDefault, TextOf(written)) << rows[i].name;
            ++defaults;
        }
    }
    EXPECT_EQ(defaults, 16);
}

TEST(MemberTable, StructuresOfArgumentsSayThemselvesWhatMayBeLeftOut) {
    const SurfaceMember& font = FindMember("PrintFont", 3);
    EXPECT_EQ(font.LeastArguments(), 3U);
    EXPECT_EQ(font.parameters.size(), 8U);
    EXPECT_EQ(FindMember("ModuleUpload", 0).LeastArguments(), 0U);
}

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
        return CallMember(*mControl, FindMember(name, arguments.size()),
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
    const SurfaceMember& files = FindMember("Files", 2);
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
