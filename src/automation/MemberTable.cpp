// The table of what a host can call, a row for each member in the order of the surface.

#include "MemberCall.h"
#include "control/TerminalFont.h"

namespace qncomm {

namespace {

Variant LineText(const std::string& text) {
    return Variant(text, TextKind::Line);
}

} // namespace

Variant ValueOf(const clsPrinterFile& file) {
    return Variant(Variant::Record{{"Name", LineText(file.Name)}, {"Size", file.Size}});
}

Variant ValueOf(const clsPrinterSetupItem& item) {
    return Variant(Variant::Record{{"Key", LineText(item.Key)}, {"Value", LineText(item.Value)}});
}

Variant ValueOf(const clsQNModuleError& error) {
    return Variant(Variant::Record{{"QNModuleName", Variant(error.QNModuleName)},
                                   {"QNErrCode", error.QNErrCode},
                                   {"QNErrInLine", error.QNErrInLine},
                                   {"QNErrDesc", LineText(error.QNErrDesc)},
                                   {"QNText", LineText(error.QNText)}});
}

namespace rows {
namespace {

using enum MemberKind;
using enum MemberType;
using Needs = MemberNeeds;

// Parameters: one that must be given, and one with what is taken in its place.

MemberParameter In(std::string_view name, MemberType type) {
    return {name, type, {}, false};
}

MemberParameter Opt(std::string_view name, MemberType type, std::string_view byDefault) {
    return {name, type, byDefault, false};
}

MemberParameter Flag(std::string_view name) {
    return Opt(name, Boolean, "False");
}

MemberParameter Used(MemberParameter parameter) {
    parameter.writtenBack = true;
    return parameter;
}

// Members whose arguments are a structure or overloaded.

Variant PrintFont(QNComm& control, MemberArguments& a) {
    PrintFontArgs args{a.As<std::string>(0),  a.As<std::string>(1),  a.As<std::int16_t>(2),
                       a.As<std::int16_t>(3), a.As<std::int16_t>(4), a.As<std::int16_t>(5),
                       a.As<bool>(6),         a.As<bool>(7)};
    control.PrintFont(args);
    a.Use(0, LineText(args.sText));
    a.Use(2, args.iSize);
    a.Use(4, args.iWidth);
    a.Use(5, args.iDir);
    return {};
}

Variant ModuleUpload(QNComm& control, MemberArguments& a) {
    ModuleUploadArgs args{a.As<std::string>(0), a.As<std::string>(1), a.As<std::string>(2)};
    Variant errors = ValueOf(control.ModuleUpload(args));
    a.Use(1, LineText(args.sTargetPath));
    a.Use(2, LineText(args.sModuleText));
    return errors;
}

Variant PressToolbarKey(QNComm& control, MemberArguments& a) {
    if (const auto* position = std::get_if<std::int32_t>(&a.At(0).value))
        control.PressToolbarKey(*position);
    else
        control.PressToolbarKey(a.As<std::string_view>(0));
    return {};
}

Variant GetFont(QNComm& control, MemberArguments& /*none*/) {
    return FontRecord(control.Font());
}

template <auto get>
SurfaceMember GetRow(std::string_view name, MemberType type) {
    return {name, Get, Needs::Nothing, type, {}, &Call<get, TextKind::Host>};
}

template <auto let>
SurfaceMember LetRow(std::string_view name, MemberType type, std::string_view parameter) {
    return {name, Let, Needs::Nothing, Nothing, {In(parameter, type)}, &Call<let>};
}

using Rows = std::vector<SurfaceMember>;

Rows StorageRows() {
    return {
        {"Files",
         Get,
         Needs::Printer,
         Records,
         {In("sDeviceName", PrinterText), Flag("brefresh"), Flag("bShowSystemFiles")},
         &Call<&QNComm::Files>},
        {"Images", Get, Needs::Printer, Records, {Flag("brefresh")}, &Call<&QNComm::Images>},
        {"ImagesCount", Get, Needs::Nothing, Integer, {}, &Call<&QNComm::ImagesCount>},
        {"InstallImage",
         Method,
         Needs::Printer,
         Nothing,
         {In("sImageName", HostText), Flag("bPermanent")},
         &Call<&QNComm::InstallImage>},
        {"PrintImage",
         Method,
         Needs::Printer,
         Nothing,
         {In("sImageName", HostText), Opt("lXPos", Long, "1"), Opt("lYPos", Long, "1"),
          Flag("bInverse"), Flag("bReload")},
         &Call<&QNComm::PrintImage>},
        {"Fonts",
         Get,
         Needs::Printer,
         Records,
         {Flag("brefresh"), Flag("bFilter")},
         &Call<&QNComm::Fonts>},
        {"FontsCount", Get, Needs::Nothing, Integer, {}, &Call<&QNComm::FontsCount>},
        {"InstallFont",
         Method,
         Needs::Printer,
         Nothing,
         {In("sFullFontPath", HostText), Flag("bPermanent")},
         &Call<&QNComm::InstallFont>},
        {"PrintFont",
         Method,
         Needs::Printer,
         Nothing,
         {Used(In("sText", PrinterText)), In("sFontName", PrinterText), Used(In("iSize", Integer)),
          Opt("iSlant", Integer, "0"), Used(Opt("iWidth", Integer, "0")),
          Used(Opt("iDir", Integer, "0")), Flag("bUcase"), Flag("bInverse")},
         &PrintFont},
    };
}

Rows PrinterRows() {
    return {
        {"ShowCommSettings", Method, Needs::Nothing, Nothing, {}, &Call<&QNComm::ShowCommSettings>},
        {"DoAutoconnect", Method, Needs::FreePort, Boolean, {}, &Call<&QNComm::DoAutoconnect>},
        {"KillQN",
         Method,
         Needs::Printer,
         Nothing,
         {In("sFullFilename", PrinterText)},
         &Call<&QNComm::KillQN>},
        {"RemoveImage",
         Method,
         Needs::Printer,
         Nothing,
         {In("sImageName", PrinterText)},
         &Call<&QNComm::RemoveImage>},
        {"PrinterType", Get, Needs::Printer, PrinterText, {}, &Call<&QNComm::PrinterType>},
        {"FirmwareVersion", Get, Needs::Printer, PrinterText, {}, &Call<&QNComm::FirmwareVersion>},
        {"Version",
         Get,
         Needs::Printer,
         PrinterText,
         {In("iNumber", Integer)},
         &Call<&QNComm::Version>},
        {"Reboot", Method, Needs::FreshClaim, Nothing, {}, &Call<&QNComm::Reboot>},
        {"CopyFile",
         Method,
         Needs::Printer,
         Nothing,
         {In("sSource", PrinterText), In("sDestination", PrinterText)},
         &Call<&QNComm::CopyFile>},
        {"RenameFile",
         Method,
         Needs::Printer,
         Nothing,
         {In("sSource", PrinterText), In("sDestination", PrinterText)},
         &Call<&QNComm::RenameFile>},
        {"NewProgram", Method, Needs::Printer, Nothing, {}, &Call<&QNComm::NewProgram>},
        {"Fre", Method, Needs::Printer, Long, {}, &Call<&QNComm::Fre>},
        {"ModuleUpload",
         Method,
         Needs::Printer,
         Records,
         {Opt("sSourcePath", HostText, ""), Used(Opt("sTargetPath", PrinterText, "")),
          Used(Opt("sModuleText", PrinterText, ""))},
         &ModuleUpload},
        {"Clear", Method, Needs::Nothing, Nothing, {}, &Call<&QNComm::Clear>},
        {"CopyCB", Method, Needs::Nothing, Nothing, {}, &Call<&QNComm::CopyCB>},
        {"PasteCB", Method, Needs::OpenPort, Nothing, {}, &Call<&QNComm::PasteCB>},
    };
}

Rows SetupAndTransferRows() {
    return {
        {"Setup", Get, Needs::Printer, Records, {}, &Call<&QNComm::Setup>},
        {"ChangePrinterSetupItem",
         Method,
         Needs::Printer,
         Nothing,
         {In("sSetupKey", PrinterText), In("sValue", PrinterText)},
         &Call<&QNComm::ChangePrinterSetupItem>},
        {"UploadQNProgram",
         Method,
         Needs::Printer,
         Nothing,
         {In("sFileName", HostText)},
         &Call<&QNComm::UploadQNProgram>},
        {"SetupWriteFile",
         Method,
         Needs::Printer,
         Nothing,
         {In("sFullName", PrinterText)},
         &Call<&QNComm::SetupWriteFile>},
        {"SetupLoadFile",
         Method,
         Needs::Printer,
         Nothing,
         {In("sFullName", PrinterText)},
         &Call<&QNComm::SetupLoadFile>},
        {"FormatDev",
         Method,
         Needs::Printer,
         Nothing,
         {In("sDevName", PrinterText), Flag("bSystemLevel")},
         &Call<&QNComm::FormatDev>},
        {"ChDir",
         Method,
         Needs::Printer,
         Nothing,
         {In("sDevName", PrinterText)},
         &Call<&QNComm::ChDir>},
        {"KermitUpload",
         Method,
         Needs::FreePort,
         Nothing,
         {In("sSource", HostText), In("sDestination", PrinterText), Flag("bManual")},
         &Call<&QNComm::KermitUpload>},
        {"KermitDownload",
         Method,
         Needs::Printer,
         Nothing,
         {In("sSource", PrinterText), In("sDestination", HostText)},
         &Call<&QNComm::KermitDownload>},
        {"BinaryUpload",
         Method,
         Needs::OpenPort,
         Nothing,
         {In("sSource", HostText), Opt("iProtocol", Integer, "5")},
         &Call<&QNComm::BinaryUpload>},
        {"BinaryDownload",
         Method,
         Needs::OpenPort,
         Nothing,
         {In("sDestination", HostText), Opt("iProtocol", Integer, "5")},
         &Call<&QNComm::BinaryDownload>},
    };
}

Rows AppearanceRows() {
    return {
        GetRow<&QNComm::BackColor>("BackColor", Long),
        LetRow<&QNComm::SetBackColor>("BackColor", Long, "lColor"),
        GetRow<&QNComm::ForeColor>("ForeColor", Long),
        LetRow<&QNComm::SetForeColor>("ForeColor", Long, "lColor"),
        GetRow<&QNComm::BackStyle>("BackStyle", Integer),
        LetRow<&QNComm::SetBackStyle>("BackStyle", Integer, "iStyle"),
        GetRow<&QNComm::BorderStyle>("BorderStyle", Integer),
        LetRow<&QNComm::SetBorderStyle>("BorderStyle", Integer, "iStyle"),
        GetRow<&QNComm::Enabled>("Enabled", Boolean),
        LetRow<&QNComm::SetEnabled>("Enabled", Boolean, "bEnabled"),
        GetRow<&QNComm::ToolbarVisible>("ToolbarVisible", Boolean),
        LetRow<&QNComm::SetToolbarVisible>("ToolbarVisible", Boolean, "bVisible"),
        GetRow<&QNComm::ToolbarAlign>("ToolbarAlign", Integer),
        LetRow<&QNComm::SetToolbarAlign>("ToolbarAlign", Integer, "iAlign"),
        {"Font", Get, Needs::Nothing, MemberType::Font, {}, &GetFont},
        LetRow<&QNComm::SetFont>("Font", MemberType::Font, "font"),
        GetRow<&QNComm::CursorColumn>("CursorColumn", Integer),
        GetRow<&QNComm::CursorRow>("CursorRow", Integer),
        LetRow<&QNComm::SetCursorRow>("CursorRow", Integer, "iRow"),
    };
}

Rows OtherRows() {
    return {
        {"PressToolbarKey",
         Method,
         Needs::OpenPort,
         Nothing,
         {In("KeyIndex", KeyIndex)},
         &PressToolbarKey},
        {"Refresh", Method, Needs::Nothing, Nothing, {}, &Call<&QNComm::Refresh>},
        LetRow<&QNComm::SetCaptureToFile>("CaptureToFile", HostText, "sPath"),
        {"DeviceUsedMem",
         Get,
         Needs::Nothing,
         PrinterText,
         {In("sDev", PrinterText)},
         &Call<&QNComm::DeviceUsedMem>},
        {"DeviceFreeMem",
         Get,
         Needs::Nothing,
         PrinterText,
         {In("sDev", PrinterText)},
         &Call<&QNComm::DeviceFreeMem>},
        {"ProgramLink",
         Method,
         Needs::Printer,
         Boolean,
         {In("colModules", Names), Opt("sHeader", PrinterText, "")},
         &Call<&QNComm::ProgramLink>},
        {"RunProgram", Method, Needs::Printer, Nothing, {}, &Call<&QNComm::RunProgram>},
        GetRow<&QNComm::TerminalFontName>("TerminalFontName", HostText),
        LetRow<&QNComm::SetTerminalFontName>("TerminalFontName", HostText, "sName"),
        GetRow<&QNComm::TerminalFontSize>("TerminalFontSize", HostText),
        LetRow<&QNComm::SetTerminalFontSize>("TerminalFontSize", HostText, "sSize"),
        LetRow<&QNComm::SetHelpFile>("HelpFile", HostText, "sPath"),
        GetRow<&QNComm::RegSettings>("RegSettings", Settings),
        LetRow<&QNComm::SetRegSettings>("RegSettings", Settings, "settings"),
        {"TearDown", Method, Needs::FreePort, Nothing, {}, &Call<&QNComm::TearDown>},
        {"IsProgramRunable", Method, Needs::Printer, Boolean, {}, &Call<&QNComm::IsProgramRunable>},
    };
}

Rows All() {
    Rows all;
    for (const Rows& part :
         {StorageRows(), PrinterRows(), SetupAndTransferRows(), AppearanceRows(), OtherRows()})
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

} // namespace
} // namespace rows

const std::vector<SurfaceMember>& SurfaceMembers() {
    static const std::vector<SurfaceMember> members = rows::All();
    return members;
}

} // namespace qncomm
