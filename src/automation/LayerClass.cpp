// What a host can call of the printer's command layer.

#include "Classes.h"
#include "Rows.h"

namespace qncomm {
namespace {

using namespace rows;
using Layer = clsQuorin;

Rows LayerLinkRows() {
    return {
        Method<&Layer::DoAutoconnect>(1, "DoAutoconnect", Needs::FreePort),
        Method<&Layer::ShowSettingsDlg>(2, "ShowSettingsDlg", Needs::Nothing),
        Method<&Layer::PortOpen>(3, "PortOpen", Needs::Printer),
        Method<&Layer::PortClose>(4, "PortClose", Needs::Nothing),
        Get<&Layer::PrinterType>(5, "PrinterType", Needs::Printer),
        Get<&Layer::FirmwareVersion>(6, "FirmwareVersion", Needs::Printer),
        Get<&Layer::FirmwareVersionNumber>(7, "FirmwareVersionNumber", Needs::Printer),
        Method<&Layer::OutputText>(8, "OutputText", Needs::OpenPort, In("sText"),
                                   Flag("bWaitForEcho")),
        Get<&Layer::RegSettings>(9, "RegSettings", Needs::Nothing),
        Set<&Layer::SetRegSettings>(9, "RegSettings", In("settings")),
        Method<&Layer::TearDown>(10, "TearDown", Needs::FreePort),
    };
}

Rows LayerStorageRows() {
    return {
        Get<&Layer::PrinterDevices>(11, "PrinterDevices", Needs::Nothing),
        Set<&Layer::SetPrinterDevices>(11, "PrinterDevices", In("devices")),
        Get<&Layer::Devices>(12, "Devices", Needs::Printer),
        Get<&Layer::CanList>(13, "CanList", Needs::Printer),
        Method<&Layer::Files>(14, "Files", Needs::Printer, In("sDev"), Flag("brefresh"),
                              Flag("bListSystemFiles")),
        Method<&Layer::Kill>(15, "Kill", Needs::Printer, In("sFullName")),
        Method<&Layer::SetCurrentPrinterDir>(16, "SetCurrentPrinterDir", Needs::Printer,
                                             In("sDevice")),
        Method<&Layer::ChDir>(17, "ChDir", Needs::Printer, In("sDevName")),
        Method<&Layer::FormatPrinterDevice>(18, "FormatPrinterDevice", Needs::Printer,
                                            In("sDevName"), Flag("bSystemLevel")),
        Method<&Layer::FormatAll>(19, "FormatAll", Needs::Printer, Flag("bSystemLevel")),
        Method<&Layer::CopyFile>(20, "CopyFile", Needs::Printer, In("sSource"), In("sDestination")),
        Method<&Layer::RenameFile>(21, "RenameFile", Needs::Printer, In("sOldName"),
                                   In("sNewName")),
    };
}

Rows LayerProgramRows() {
    return {
        Method<&Layer::Reboot>(22, "Reboot", Needs::FreshClaim),
        Method<&Layer::NewProgram>(23, "NewProgram", Needs::Printer),
        Method<&Layer::RunProgram>(24, "RunProgram", Needs::Printer),
        Method<&Layer::IsProgramRunable>(25, "IsProgramRunable", Needs::Printer),
        Method<&Layer::SaveProgram>(26, "SaveProgram", Needs::Printer, In("sFileName")),
        Method<&Layer::Fre>(27, "Fre", Needs::Printer),
        Method<&Layer::UploadQNProgram>(28, "UploadQNProgram", Needs::Printer, Path("sFileName")),
        Method<&Layer::ModuleUpload>(29, "ModuleUpload", Needs::Printer, Path("sSourcePath").Or(""),
                                     In("sTargetPath").Or(""), In("sModuleText").Or("")),
        Method<&Layer::ProgramLink>(30, "ProgramLink", Needs::Printer, In("cModules"),
                                    In("sHeader").Or("")),
    };
}

Rows LayerSetupRows() {
    return {
        Get<&Layer::PrinterSetupItems>(31, "PrinterSetupItems", Needs::Nothing),
        Set<&Layer::SetPrinterSetupItems>(31, "PrinterSetupItems", In("items")),
        Method<&Layer::GetSetup>(32, "GetSetup", Needs::Printer),
        Method<&Layer::ChangePrinterSetupItem>(33, "ChangePrinterSetupItem", Needs::Printer,
                                               In("sSetupKey"), In("sValue")),
        Method<&Layer::SetupWriteFile>(34, "SetupWriteFile", Needs::Printer, In("sFullName")),
        Method<&Layer::SetupLoadFile>(35, "SetupLoadFile", Needs::Printer, In("sFullName")),
    };
}

Rows LayerFontAndImageRows() {
    return {
        Method<&Layer::Fonts>(36, "Fonts", Needs::Printer, Flag("bFilterBitmaps")),
        Method<&Layer::RemoveFont>(37, "RemoveFont", Needs::Printer, In("sFontName")),
        Method<&Layer::InstallFont>(38, "InstallFont", Needs::Printer, Path("sFullFontPath"),
                                    Flag("bPermanent")),
        Method<&Layer::PrintFont>(39, "PrintFont", Needs::Printer, In("sText"), In("sFontName"),
                                  In("iSize").Or("0"), In("iSlant").Or("0"), In("iWidth").Or("0"),
                                  In("iDir").Or("0"), Flag("bUcase"), Flag("bInverse")),
        Method<&Layer::Images>(40, "Images", Needs::Printer),
        Method<&Layer::RemoveImage>(41, "RemoveImage", Needs::Printer, In("sImageName")),
        Method<&Layer::InstallImage>(42, "InstallImage", Needs::Printer, Path("sImageName"),
                                     Flag("bPermanent")),
        Method<&Layer::PrintImage>(43, "PrintImage", Needs::Printer, Path("sImageName"),
                                   In("lXPos").Or("1"), In("lYPos").Or("1"), Flag("bInverse"),
                                   Flag("bReload")),
        Method<&Layer::IsCommSetForImageLoad>(44, "IsCommSetForImageLoad", Needs::Printer),
        Method<&Layer::Fileload>(45, "Fileload", Needs::Printer, Path("sFileName"),
                                 In("sDevice").Or("")),
    };
}

Rows LayerTransferRows() {
    return {
        Method<&Layer::KermitUpload>(46, "KermitUpload", Needs::FreePort, Path("sSource"),
                                     In("sDestination"), Flag("bManual")),
        Method<&Layer::KermitDownload>(47, "KermitDownload", Needs::Printer, In("sSource"),
                                       Path("sDestination"), In("lFileSize").Or("0")),
        Method<&Layer::BinaryUpload>(48, "BinaryUpload", Needs::OpenPort, Path("sSource"),
                                     In("iProtocol").Or("5")),
        Method<&Layer::BinaryDownload>(49, "BinaryDownload", Needs::OpenPort, Path("sDestination"),
                                       In("iProtocol").Or("5")),
    };
}

} // namespace

const SurfaceClass& LayerClass() {
    static const SurfaceClass of{
        "clsQuorin",
        AllOf({LayerLinkRows(), LayerStorageRows(), LayerProgramRows(), LayerSetupRows(),
               LayerFontAndImageRows(), LayerTransferRows()}),
        {EventRow<&Layer::StatusEvent>(1, "StatusEvent", MemberType::HostText, "sStatusMsg",
                                       "iProgress", "bCancel"),
         EventRow<&Layer::ConvertImage>(2, "ConvertImage", MemberType::PrinterText, "sImageName",
                                        "sImageData")}};
    return of;
}

} // namespace qncomm
