#include "SurfaceReader.h"
#include "automation/SurfaceClass.h"
#include "common/Text.h"
#include "link/clsDataLink.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

namespace qncomm {
namespace {

using testing::DeclaredMember;
using testing::DeclaredMembers;
using testing::DeclaredParameter;
using Strings = std::vector<std::string>;

/// A class of the table beside the part of its header that declares its members.
struct Held {
    const char* name;
    const char* header; ///< below src
    const char* from;
    const char* to;
    Strings notForHosts; ///< declared there, but no row

    const SurfaceClass& Class() const { return ClassNamed(name); }
    std::vector<DeclaredMember> Declared() const {
        std::ifstream in(std::string(QN_SOURCE_DIR "/src/") + header, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(in), {}};
        auto members = DeclaredMembers(text, from, to);
        std::erase_if(members, [&](const DeclaredMember& member) {
            return std::ranges::find(notForHosts, member.name) != notForHosts.end();
        });
        return members;
    }
};

/// A host sets the port up in the dialog or the settings store, and claims it by PortOpen.
const Strings OfTheLinkAlone{"SerialPort",
                             "DispatchDue",
                             "Baudrate",
                             "Parity",
                             "Databits",
                             "Stopbits",
                             "Flowcontrol",
                             "Commport",
                             "DSRDetectActive",
                             "SettingsText",
                             "IsDSRActive",
                             "ApplyCommSettings",
                             "AutoConnectBaudrates",
                             "FrameFormats",
                             "AcquirePort",
                             "ReleasePort",
                             "UseCount",
                             "TerminalActive",
                             "InputListing",
                             "InputTextUntilQuiet",
                             "PurgePort",
                             "Delay",
                             "AutoConnect",
                             "ModelText",
                             "VersionText",
                             "PreviousSysvar18",
                             "PreviousSysvar19",
                             "Reboot",
                             "EndUnfinishedLine",
                             "BeginLoad",
                             "LoadSize",
                             "LoadBytes",
                             "GiveUpLoad",
                             "DeafMs",
                             "AwaitPrompt",
                             "AwaitPromptBehind",
                             "LastSearch",
                             "Listens",
                             "Live",
                             "RequireGeneration",
                             "State"};

const std::vector<Held>& All() {
    static const std::vector<Held> all{
        {"QNComm",
         "control/include/control/QNComm.h",
         "// -- Printer storage",
         "// -- For hosts that need",
         {}},
        {"clsQuorin",
         "printer/include/printer/clsQuorin.h",
         "// -- The link's members",
         "private:",
         {"PrinterFileExists", "ForgetFormerPrinter"}},
        {"clsDataLink", "link/include/link/clsDataLink.h", "// -- Life",
         "private:", OfTheLinkAlone},
        {"RegSettings",
         "common/include/common/RegSettings.h",
         "virtual ~RegSettings() = default;",
         "/// Stores several values",
         {}},
    };
    return all;
}

class TheTable : public ::testing::TestWithParam<Held> {
  protected:
    /// Calls check(row, declaration) for each row; the class's rows are in the header's order or
    /// not, as they have to be looked for by name.
    template <class Check>
    static void ForEachRow(Check check) {
        const auto declared = GetParam().Declared();
        for (const SurfaceMember& row : GetParam().Class().members) {
            const DeclaredMember wanted = Spelled(row);
            const auto found = std::ranges::find_if(declared, [&](const DeclaredMember& member) {
                return member.name == wanted.name && member.isLet == wanted.isLet;
            });
            ASSERT_NE(found, declared.end()) << row.name;
            ASSERT_EQ(found->parameters.size(), row.parameters.size()) << row.name;
            check(row, *found);
        }
    }

    /// The name of a row's member as the reader of headers spells it.
    static DeclaredMember Spelled(const SurfaceMember& row) {
        if (row.name == "SetCurrentPrinterDir") return {"CurrentPrinterDir", true, {}};
        return {std::string(row.name), row.kind == MemberKind::Set, {}};
    }
};

/// Such as "let BackColor(lColor)".
std::string Signature(const DeclaredMember& member) {
    std::string text = (member.isLet ? "let " : "") + member.name + "(";
    for (const DeclaredParameter& parameter : member.parameters)
        text += (text.back() == '(' ? "" : ", ") + parameter.name;
    return text + ")";
}

TEST_P(TheTable, HasARowForEveryMemberThatAHostMayCall) {
    Strings declared;
    for (const DeclaredMember& member : GetParam().Declared())
        declared.push_back(Signature(member));
    Strings rows;
    for (const SurfaceMember& row : GetParam().Class().members) {
        DeclaredMember member = Spelled(row);
        for (const MemberParameter& parameter : row.parameters)
            member.parameters.push_back({"", std::string(parameter.name), ""});
        rows.push_back(Signature(member));
    }
    EXPECT_THAT(rows, ::testing::UnorderedElementsAreArray(declared));
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
        {"vector<string>", MemberType::Names},
        {"TerminalFont", MemberType::Font},
        {"shared_ptr<PrinterDeviceTable>", MemberType::Records},
        {"shared_ptr<PrinterSetup>", MemberType::Records},
        {"shared_ptr<LiveFacts>", MemberType::Records},
        {"shared_ptr<RegSettings>", MemberType::Settings}};
    return types;
}

bool Agree(const std::string& declared, MemberType type) {
    const auto [first, last] = TypesOfDeclarations().equal_range(declared);
    return std::any_of(first, last, [&](const auto& known) { return known.second == type; });
}

TEST_P(TheTable, TakesOfEachParameterWhatItsMemberTakes) {
    ForEachRow([](const SurfaceMember& row, const DeclaredMember& declared) {
        for (std::size_t p = 0; p < row.parameters.size(); ++p)
            EXPECT_TRUE(Agree(declared.parameters[p].type, row.parameters[p].type))
                << row.name << ": " << declared.parameters[p].type << ' ' << row.parameters[p].name;
    });
}

/// A default as the header writes it, as the table's text.
std::string TextOf(const std::string& declared) {
    static const std::map<std::string, std::string> spellings{
        {"false", "False"}, {"{}", ""}, {"BinaryZModem", std::to_string(BinaryZModem)}};
    const auto found = spellings.find(declared);
    return found != spellings.end() ? found->second : declared;
}

/// Rows whose defaults C++ cannot write: of parameters that are a structure or a reference.
bool SaysItselfWhatMayBeLeftOut(const SurfaceMember& row) {
    return row.name == "PrintFont" || row.name == "ModuleUpload";
}

TEST_P(TheTable, LeavesOutWhatItsMemberLetsOutAndTakesTheSameInItsPlace) {
    ForEachRow([](const SurfaceMember& row, const DeclaredMember& declared) {
        if (SaysItselfWhatMayBeLeftOut(row)) return;
        for (std::size_t p = 0; p < row.parameters.size(); ++p) {
            const auto& parameter = row.parameters[p];
            const std::string& written = declared.parameters[p].byDefault;
            EXPECT_EQ(parameter.byDefault.has_value(), !written.empty()) << row.name;
            EXPECT_EQ(parameter.byDefault.value_or(""), TextOf(written)) << row.name;
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Of, TheTable, ::testing::ValuesIn(All()),
                         [](const auto& of) { return std::string(of.param.name); });

const SurfaceMember& RowOf(std::string_view of, std::string_view name, MemberKind kind) {
    const auto& rows = ClassNamed(of).members;
    return *std::ranges::find_if(
        rows, [&](const SurfaceMember& row) { return row.name == name && row.kind == kind; });
}

TEST(MemberTable, FollowsTheOrderOfTheControlsSurface) {
    Strings declared;
    for (const DeclaredMember& member : All().front().Declared())
        declared.push_back(member.name);
    Strings rows;
    for (const SurfaceMember& row : ControlClass().members)
        rows.emplace_back(row.name);
    EXPECT_GT(rows.size(), 60U);
    EXPECT_EQ(rows, declared);
}

TEST(MemberTable, StructuresOfArgumentsSayThemselvesWhatMayBeLeftOut) {
    const SurfaceMember& font = RowOf("QNComm", "PrintFont", MemberKind::Method);
    EXPECT_EQ(font.LeastArguments(), 3U);
    EXPECT_EQ(font.parameters.size(), 8U);
    EXPECT_EQ(RowOf("QNComm", "ModuleUpload", MemberKind::Method).LeastArguments(), 0U);
    EXPECT_EQ(RowOf("clsQuorin", "PrintFont", MemberKind::Method).LeastArguments(), 2U);
    EXPECT_EQ(RowOf("clsQuorin", "ModuleUpload", MemberKind::Method).LeastArguments(), 0U);
}

TEST(MemberTable, GivesEachMemberAnIdOfItsOwnThatOnlyTheRowsOfOnePropertyShare) {
    for (const SurfaceClass* of : SurfaceClasses()) {
        std::map<std::int32_t, std::string_view> names;
        std::set<std::pair<std::int32_t, MemberKind>> uses;
        std::map<std::string_view, std::int32_t> ids;
        for (const SurfaceMember& row : of->members) {
            EXPECT_GT(row.id, 0) << row.name;
            EXPECT_EQ(names.emplace(row.id, row.name).first->second, row.name);
            EXPECT_EQ(ids.emplace(row.name, row.id).first->second, row.id) << row.name;
            EXPECT_TRUE(uses.emplace(row.id, row.kind).second) << row.name;
        }
        std::set<std::int32_t> events;
        for (const SurfaceEvent& row : of->events)
            EXPECT_TRUE(events.insert(row.id).second) << row.name;
    }
}

/// The members of each class by their ids, from 1. Hosts that were built against an older table
/// call by these numbers: names are added at the end and none is ever moved or taken out.
const std::map<std::string_view, std::string_view>& PinnedIds() {
    static const std::map<std::string_view, std::string_view> names{
        {"QNComm", "Files Images ImagesCount InstallImage PrintImage Fonts FontsCount InstallFont "
                   "PrintFont ShowCommSettings DoAutoconnect KillQN RemoveImage PrinterType "
                   "FirmwareVersion Version Reboot CopyFile RenameFile NewProgram Fre ModuleUpload "
                   "Clear CopyCB PasteCB Setup ChangePrinterSetupItem UploadQNProgram "
                   "SetupWriteFile SetupLoadFile FormatDev ChDir KermitUpload KermitDownload "
                   "BinaryUpload BinaryDownload BackColor ForeColor BackStyle BorderStyle Enabled "
                   "ToolbarVisible ToolbarAlign Font CursorColumn CursorRow PressToolbarKey "
                   "Refresh CaptureToFile DeviceUsedMem DeviceFreeMem ProgramLink RunProgram "
                   "TerminalFontName TerminalFontSize HelpFile RegSettings TearDown "
                   "IsProgramRunable LineState PrinterActivity Generation LiveFacts "
                   "RequireGeneration"},
        {"clsQuorin",
         "DoAutoconnect ShowSettingsDlg PortOpen PortClose PrinterType FirmwareVersion "
         "FirmwareVersionNumber OutputText RegSettings TearDown PrinterDevices Devices "
         "CanList Files Kill SetCurrentPrinterDir ChDir FormatPrinterDevice FormatAll "
         "CopyFile RenameFile Reboot NewProgram RunProgram IsProgramRunable SaveProgram "
         "Fre UploadQNProgram ModuleUpload ProgramLink PrinterSetupItems GetSetup "
         "ChangePrinterSetupItem SetupWriteFile SetupLoadFile Fonts RemoveFont "
         "InstallFont PrintFont Images RemoveImage InstallImage PrintImage "
         "IsCommSetForImageLoad Fileload KermitUpload KermitDownload BinaryUpload "
         "BinaryDownload"},
        {"clsDataLink",
         "IsValidPort SaveCommSettings ShowSettingsDlg RegSettings TearDown OutputText "
         "InputText WaitForEchoLine WaitForOk ImmediateMode Stdio KermitUpload "
         "KermitDownload BinaryUpload BinaryDownload SendBreak SendCtrlC StopProgram"},
        {"RegSettings", "ReadValue WriteValue"},
        {"TerminalFont", "Name Size"},
        {"clsPrinterFile", "Name Size"},
        {"clsPrinterDevice", "Name BytesUsed BytesFree Files Dirty Valid"},
        {"clsPrinterSetupItem", "Key Value"},
        {"clsLiveFact", "Name Value AgeMs LearntFrom"},
        {"clsQNModuleError", "QNModuleName QNErrCode QNErrInLine QNErrDesc QNText"},
    };
    return names;
}

TEST(MemberTable, KeepsTheIdThatAMemberOnceHad) {
    EXPECT_EQ(PinnedIds().size(), SurfaceClasses().size());
    for (const auto& [of, pinned] : PinnedIds()) {
        const Strings names = SplitNonEmpty(pinned, " ");
        for (const SurfaceMember& row : ClassNamed(of).members) {
            const auto place = static_cast<std::size_t>(row.id) - 1;
            ASSERT_LT(place, names.size()) << row.name << ": pin the id of a new member";
            EXPECT_EQ(row.name, names[place]) << of;
        }
    }
}

TEST(MemberTable, PassesTextsAndTruthValuesOfTheControlByReference) {
    const std::set<std::pair<std::string_view, std::string_view>> byValue{
        {"Files", "sDeviceName"}, {"DeviceUsedMem", "sDev"}, {"DeviceFreeMem", "sDev"}};
    const std::set<std::string_view> numbersByReference{"iSize", "iSlant", "iWidth", "iDir"};
    for (const SurfaceMember& row : ControlClass().members)
        for (const MemberParameter& parameter : row.parameters) {
            const bool textOrFlag = parameter.type == MemberType::PrinterText
                                    || parameter.type == MemberType::HostText
                                    || parameter.type == MemberType::Boolean;
            const bool expected = row.kind != MemberKind::Set
                                  && (textOrFlag ? !byValue.contains({row.name, parameter.name})
                                                 : numbersByReference.contains(parameter.name));
            EXPECT_EQ(parameter.byReference, expected) << row.name << ' ' << parameter.name;
        }
}

TEST(MemberTable, PassesEverythingOfLinkAndCommandLayerByReferenceButWhatAPropertyIsSetTo) {
    for (const char* of : {"clsQuorin", "clsDataLink"})
        for (const SurfaceMember& row : ClassNamed(of).members)
            for (const MemberParameter& parameter : row.parameters)
                EXPECT_EQ(parameter.byReference, row.kind != MemberKind::Set)
                    << row.name << ' ' << parameter.name;
}

TEST(MemberTable, WritesBackOnlyWhatIsPassedByReference) {
    for (const SurfaceClass* of : SurfaceClasses())
        for (const SurfaceMember& row : of->members)
            for (const MemberParameter& parameter : row.parameters)
                EXPECT_LE(parameter.writtenBack, parameter.byReference)
                    << row.name << ' ' << parameter.name;
}

TEST(MemberTable, NamesTheClassOfEveryObjectThatGoesInOrOut) {
    const auto check = [](MemberType type, std::string_view object, std::string_view where) {
        const bool isObject =
            type == MemberType::Records || type == MemberType::Font || type == MemberType::Settings;
        EXPECT_EQ(!object.empty(), isObject) << where;
        EXPECT_EQ(isObject ? ClassNamed(object).name : "", object) << where;
    };
    for (const SurfaceClass* of : SurfaceClasses())
        for (const SurfaceMember& row : of->members) {
            check(row.result, row.object, row.name);
            for (const MemberParameter& parameter : row.parameters)
                check(parameter.type, parameter.object, row.name);
        }
    EXPECT_EQ(RowOf("QNComm", "Files", MemberKind::Get).object, "clsPrinterFile");
    EXPECT_EQ(RowOf("QNComm", "ModuleUpload", MemberKind::Method).object, "clsQNModuleError");
    EXPECT_EQ(RowOf("QNComm", "Font", MemberKind::Get).object, "TerminalFont");
}

TEST(MemberTable, ListsTheEventsWithWhatTheyPassByReference) {
    const auto described = [](std::string_view of) {
        Strings texts;
        for (const SurfaceEvent& event : ClassNamed(of).events) {
            std::string text = std::to_string(event.id) + " " + std::string(event.name);
            for (const MemberParameter& parameter : event.parameters)
                text.append(parameter.byReference ? " &" : " ").append(parameter.name);
            texts.push_back(text);
        }
        return texts;
    };
    EXPECT_EQ(described("QNComm"), (Strings{"1 PortStateEvent &bPortBusy",
                                            "2 StatusEvent &sStatusMsg iProgress &bCancel",
                                            "3 LiveStateEvent iLine iPrinter lGeneration"}));
    EXPECT_EQ(described("clsQuorin"), (Strings{"1 StatusEvent &sStatusMsg &iProgress &bCancel",
                                               "2 ConvertImage &sImageName &sImageData"}));
    EXPECT_EQ(
        described("clsDataLink"),
        (Strings{"1 PortStateEvent &bPortOpen", "2 StatusEvent &sStatusMsg &iProgressPerc &bCancel",
                 "3 LiveStateEvent iLine iPrinter lGeneration"}));
}

TEST(MemberTable, TakesTheTypesOfPersistedPropertiesFromTheirTable) {
    EXPECT_EQ(RowOf("QNComm", "BackColor", MemberKind::Get).result, MemberType::Long);
    EXPECT_EQ(RowOf("QNComm", "Enabled", MemberKind::Set).parameters.at(0).type,
              MemberType::Boolean);
    EXPECT_EQ(RowOf("QNComm", "BackStyle", MemberKind::Get).result, MemberType::Integer);
}

} // namespace
} // namespace qncomm
