// What a host can call of the control, in the order of its surface.

#include "Rows.h"

namespace qncomm {
namespace {

using namespace rows;

// Members whose arguments are a structure or overloaded.

void PrintFont(QNComm& control, std::string& sText, const std::string& sFontName,
               std::int16_t& iSize, std::int16_t iSlant, std::int16_t& iWidth, std::int16_t& iDir,
               bool bUcase, bool bInverse) {
    PrintFontArgs args{sText, sFontName, iSize, iSlant, iWidth, iDir, bUcase, bInverse};
    control.PrintFont(args);
    sText = args.sText;
    iSize = args.iSize;
    iWidth = args.iWidth;
    iDir = args.iDir;
}

std::shared_ptr<ModuleErrors> ModuleUpload(QNComm& control, const std::string& sSourcePath,
                                           std::string& sTargetPath, std::string& sModuleText) {
    ModuleUploadArgs args{sSourcePath, sTargetPath, sModuleText};
    auto errors = control.ModuleUpload(args);
    sTargetPath = args.sTargetPath;
    sModuleText = args.sModuleText;
    return errors;
}

void PressToolbarKey(QNComm& control, const Variant& KeyIndex) {
    if (const auto* position = KeyIndex.As<std::int32_t>())
        control.PressToolbarKey(*position);
    else
        control.PressToolbarKey(AsString(KeyIndex));
}

// The persisted properties, whose types and values stand in QNComm::Properties.

ShownType TypeOf(PropertyType type) {
    switch (type) {
    case PropertyType::Boolean:
        return {MemberType::Boolean};
    case PropertyType::Integer:
        return {MemberType::Integer};
    case PropertyType::Long:
        return {MemberType::Long};
    case PropertyType::Text:
        return {MemberType::HostText};
    case PropertyType::Font:
        break;
    }
    return Shown<TerminalFont>::type;
}

Variant ReadProperty(const SurfaceObject& on, const SurfaceMember& self,
                     MemberArguments& /*none*/) {
    return on.Control().Property(self.name);
}

Variant WriteProperty(const SurfaceObject& on, const SurfaceMember& self,
                      MemberArguments& arguments) {
    on.Control().SetProperty(self.name, arguments.At(0));
    return {};
}

SurfaceMember GetProperty(std::int32_t id, std::string_view name) {
    const ShownType type = TypeOf(QNComm::PropertyNamed(name).type);
    return {id, name, MemberKind::Get, Needs::Nothing, type.type, type.object, {}, &ReadProperty};
}

SurfaceMember SetProperty(std::int32_t id, std::string_view name, std::string_view parameter) {
    const ShownType type = TypeOf(QNComm::PropertyNamed(name).type);
    return {id,
            name,
            MemberKind::Set,
            Needs::Nothing,
            MemberType::Nothing,
            {},
            {{parameter, type.type, type.object}},
            &WriteProperty};
}

Rows StorageRows() {
    return {
        Get<&QNComm::Files>(1, "Files", Needs::Printer, In("sDeviceName").ByValue(),
                            Flag("brefresh"), Flag("bShowSystemFiles")),
        Get<&QNComm::Images>(2, "Images", Needs::Printer, Flag("brefresh")),
        Get<&QNComm::ImagesCount>(3, "ImagesCount", Needs::Nothing),
        Method<&QNComm::InstallImage>(4, "InstallImage", Needs::Printer, Path("sImageName"),
                                      Flag("bPermanent")),
        Method<&QNComm::PrintImage>(5, "PrintImage", Needs::Printer, Path("sImageName"),
                                    In("lXPos").Or("1"), In("lYPos").Or("1"), Flag("bInverse"),
                                    Flag("bReload")),
        Get<&QNComm::Fonts>(6, "Fonts", Needs::Printer, Flag("brefresh"), Flag("bFilter")),
        Get<&QNComm::FontsCount>(7, "FontsCount", Needs::Nothing),
        Method<&QNComm::InstallFont>(8, "InstallFont", Needs::Printer, Path("sFullFontPath"),
                                     Flag("bPermanent")),
        Method<&PrintFont>(9, "PrintFont", Needs::Printer, In("sText"), In("sFontName"),
                           In("iSize"), In("iSlant").Or("0").ByReference(), In("iWidth").Or("0"),
                           In("iDir").Or("0"), Flag("bUcase"), Flag("bInverse")),
    };
}

Rows PrinterRows() {
    return {
        Method<&QNComm::ShowCommSettings>(10, "ShowCommSettings", Needs::Nothing),
        Method<&QNComm::DoAutoconnect>(11, "DoAutoconnect", Needs::FreePort),
        Method<&QNComm::KillQN>(12, "KillQN", Needs::Printer, In("sFullFilename")),
        Method<&QNComm::RemoveImage>(13, "RemoveImage", Needs::Printer, In("sImageName")),
        Get<&QNComm::PrinterType>(14, "PrinterType", Needs::Printer),
        Get<&QNComm::FirmwareVersion>(15, "FirmwareVersion", Needs::Printer),
        Get<&QNComm::Version>(16, "Version", Needs::Printer, In("iNumber")),
        Method<&QNComm::Reboot>(17, "Reboot", Needs::FreshClaim),
        Method<&QNComm::CopyFile>(18, "CopyFile", Needs::Printer, In("sSource"),
                                  In("sDestination")),
        Method<&QNComm::RenameFile>(19, "RenameFile", Needs::Printer, In("sSource"),
                                    In("sDestination")),
        Method<&QNComm::NewProgram>(20, "NewProgram", Needs::Printer),
        Method<&QNComm::Fre>(21, "Fre", Needs::Printer),
        Method<&ModuleUpload>(22, "ModuleUpload", Needs::Printer, Path("sSourcePath").Or(""),
                              In("sTargetPath").Or(""), In("sModuleText").Or("")),
        Method<&QNComm::Clear>(23, "Clear", Needs::Nothing),
        Method<&QNComm::CopyCB>(24, "CopyCB", Needs::Nothing),
        Method<&QNComm::PasteCB>(25, "PasteCB", Needs::OpenPort),
    };
}

Rows SetupAndTransferRows() {
    return {
        Get<&QNComm::Setup>(26, "Setup", Needs::Printer),
        Method<&QNComm::ChangePrinterSetupItem>(27, "ChangePrinterSetupItem", Needs::Printer,
                                                In("sSetupKey"), In("sValue")),
        Method<&QNComm::UploadQNProgram>(28, "UploadQNProgram", Needs::Printer, Path("sFileName")),
        Method<&QNComm::SetupWriteFile>(29, "SetupWriteFile", Needs::Printer, In("sFullName")),
        Method<&QNComm::SetupLoadFile>(30, "SetupLoadFile", Needs::Printer, In("sFullName")),
        Method<&QNComm::FormatDev>(31, "FormatDev", Needs::Printer, In("sDevName"),
                                   Flag("bSystemLevel")),
        Method<&QNComm::ChDir>(32, "ChDir", Needs::Printer, In("sDevName")),
        Method<&QNComm::KermitUpload>(33, "KermitUpload", Needs::FreePort, Path("sSource"),
                                      In("sDestination"), Flag("bManual")),
        Method<&QNComm::KermitDownload>(34, "KermitDownload", Needs::Printer, In("sSource"),
                                        Path("sDestination")),
        Method<&QNComm::BinaryUpload>(35, "BinaryUpload", Needs::OpenPort, Path("sSource"),
                                      In("iProtocol").Or("5")),
        Method<&QNComm::BinaryDownload>(36, "BinaryDownload", Needs::OpenPort, Path("sDestination"),
                                        In("iProtocol").Or("5")),
    };
}

Rows AppearanceRows() {
    return {
        GetProperty(37, "BackColor"),
        SetProperty(37, "BackColor", "lColor"),
        GetProperty(38, "ForeColor"),
        SetProperty(38, "ForeColor", "lColor"),
        GetProperty(39, "BackStyle"),
        SetProperty(39, "BackStyle", "iStyle"),
        GetProperty(40, "BorderStyle"),
        SetProperty(40, "BorderStyle", "iStyle"),
        GetProperty(41, "Enabled"),
        SetProperty(41, "Enabled", "bEnabled"),
        GetProperty(42, "ToolbarVisible"),
        SetProperty(42, "ToolbarVisible", "bVisible"),
        GetProperty(43, "ToolbarAlign"),
        SetProperty(43, "ToolbarAlign", "iAlign"),
        GetProperty(44, "Font"),
        SetProperty(44, "Font", "font"),
        Get<&QNComm::CursorColumn>(45, "CursorColumn", Needs::Nothing),
        Get<&QNComm::CursorRow>(46, "CursorRow", Needs::Nothing),
        Set<&QNComm::SetCursorRow>(46, "CursorRow", In("iRow")),
    };
}

Rows OtherRows() {
    return {
        Method<&PressToolbarKey>(47, "PressToolbarKey", Needs::OpenPort, In("KeyIndex")),
        Method<&QNComm::Refresh>(48, "Refresh", Needs::Nothing),
        Set<&QNComm::SetCaptureToFile>(49, "CaptureToFile", Path("sPath")),
        Get<&QNComm::DeviceUsedMem>(50, "DeviceUsedMem", Needs::Nothing, In("sDev").ByValue()),
        Get<&QNComm::DeviceFreeMem>(51, "DeviceFreeMem", Needs::Nothing, In("sDev").ByValue()),
        Method<&QNComm::ProgramLink>(52, "ProgramLink", Needs::Printer, In("colModules"),
                                     In("sHeader").Or("")),
        Method<&QNComm::RunProgram>(53, "RunProgram", Needs::Printer),
        HostText(Get<&QNComm::TerminalFontName>(54, "TerminalFontName", Needs::Nothing)),
        Set<&QNComm::SetTerminalFontName>(54, "TerminalFontName", Path("sName")),
        HostText(Get<&QNComm::TerminalFontSize>(55, "TerminalFontSize", Needs::Nothing)),
        Set<&QNComm::SetTerminalFontSize>(55, "TerminalFontSize", Path("sSize")),
        Set<&QNComm::SetHelpFile>(56, "HelpFile", Path("sPath")),
        Get<&QNComm::RegSettings>(57, "RegSettings", Needs::Nothing),
        Set<&QNComm::SetRegSettings>(57, "RegSettings", In("settings")),
        Method<&QNComm::TearDown>(58, "TearDown", Needs::FreePort),
        Method<&QNComm::IsProgramRunable>(59, "IsProgramRunable", Needs::Printer),
    };
}

Rows LiveRows() {
    return {
        Get<&QNComm::LineState>(60, "LineState", Needs::Nothing),
        Get<&QNComm::PrinterActivity>(61, "PrinterActivity", Needs::Nothing),
        Get<&QNComm::Generation>(62, "Generation", Needs::Nothing),
        Get<&QNComm::LiveFacts>(63, "LiveFacts", Needs::Nothing),
        Method<&QNComm::RequireGeneration>(64, "RequireGeneration", Needs::Printer,
                                           In("lGeneration")),
    };
}

} // namespace

const SurfaceClass& ControlClass() {
    static const SurfaceClass of{
        "QNComm",
        AllOf({StorageRows(), PrinterRows(), SetupAndTransferRows(), AppearanceRows(), OtherRows(),
               LiveRows()}),
        {EventRow<&QNComm::PortStateEvent>(1, "PortStateEvent", MemberType::HostText, "bPortBusy"),
         EventRow<&QNComm::StatusEvent>(2, "StatusEvent", MemberType::HostText, "sStatusMsg",
                                        "iProgress", "bCancel"),
         EventRow<&QNComm::LiveStateEvent>(3, "LiveStateEvent", MemberType::HostText, "iLine",
                                           "iPrinter", "lGeneration")}};
    return of;
}

} // namespace qncomm
