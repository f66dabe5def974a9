// What the control passes on to the command layer as it is.

#include "Members.h"
#include "common/modErrorHandling.h"

namespace qncomm {

void QNComm::InstallImage(const std::string& sImageName, bool bPermanent) {
    const EndBusy endBusy;
    Begin()->InstallImage(sImageName, bPermanent);
}

void QNComm::PrintImage(const std::string& sImageName, std::int32_t lXPos, std::int32_t lYPos,
                        bool bInverse, bool bReload) {
    const EndBusy endBusy;
    Begin()->PrintImage(sImageName, lXPos, lYPos, bInverse, bReload);
}

void QNComm::InstallFont(const std::string& sFullFontPath, bool bPermanent) {
    const EndBusy endBusy;
    Begin()->InstallFont(sFullFontPath, bPermanent);
}

void QNComm::PrintFont(PrintFontArgs& args) {
    const EndBusy endBusy;
    Begin()->PrintFont(args.sText, args.sFontName, args.iSize, args.iSlant, args.iWidth, args.iDir,
                       args.bUcase, args.bInverse);
}

void QNComm::ShowCommSettings() {
    Begin()->ShowSettingsDlg();
}

bool QNComm::DoAutoconnect() {
    return Begin()->DoAutoconnect();
}

void QNComm::KillQN(const std::string& sFullFilename) {
    Begin()->Kill(sFullFilename);
}

void QNComm::RemoveImage(const std::string& sImageName) {
    Begin()->RemoveImage(sImageName);
}

std::vector<std::string> QNComm::Devices() {
    return Begin()->Devices();
}

bool QNComm::CanList() {
    return Begin()->CanList();
}

std::string QNComm::PrinterType() {
    return Begin()->PrinterType();
}

std::string QNComm::FirmwareVersion() {
    return Begin()->FirmwareVersion();
}

std::string QNComm::Version(std::int16_t iNumber) {
    switch (iNumber) {
    case 0:
        return FirmwareVersion();
    case 1:
        return PrinterType();
    default:
        RaiseError(ErrPropertyValue, "QNComm:Version");
    }
}

void QNComm::Reboot() {
    Begin()->Reboot();
}

void QNComm::CopyFile(const std::string& sSource, const std::string& sDestination) {
    Begin()->CopyFile(sSource, sDestination);
}

void QNComm::RenameFile(const std::string& sSource, const std::string& sDestination) {
    Begin()->RenameFile(sSource, sDestination);
}

void QNComm::NewProgram() {
    Begin()->NewProgram();
}

std::int32_t QNComm::Fre() {
    return Begin()->Fre();
}

std::shared_ptr<ModuleErrors> QNComm::ModuleUpload(ModuleUploadArgs& args) {
    return Begin()->ModuleUpload(args.sSourcePath, args.sTargetPath, args.sModuleText);
}

std::shared_ptr<PrinterSetup> QNComm::Setup() {
    const Operation operation = Begin();
    const EndBusy endBusy;
    operation->GetSetup();
    return operation->PrinterSetupItems();
}

void QNComm::ChangePrinterSetupItem(const std::string& sSetupKey, const std::string& sValue) {
    Begin()->ChangePrinterSetupItem(sSetupKey, sValue);
}

void QNComm::UploadQNProgram(const std::string& sFileName) {
    Begin()->UploadQNProgram(sFileName);
}

void QNComm::SetupWriteFile(const std::string& sFullName) {
    Begin()->SetupWriteFile(sFullName);
}

void QNComm::SetupLoadFile(const std::string& sFullName) {
    Begin()->SetupLoadFile(sFullName);
}

void QNComm::FormatDev(const std::string& sDevName, bool bSystemLevel) {
    Begin()->FormatPrinterDevice(sDevName, bSystemLevel);
}

void QNComm::ChDir(const std::string& sDevName) {
    Begin()->ChDir(sDevName);
}

bool QNComm::ProgramLink(const Collection<std::string>& colModules, std::string_view sHeader) {
    return Begin()->ProgramLink(colModules, sHeader);
}

void QNComm::RunProgram() {
    Begin()->RunProgram();
}

bool QNComm::IsProgramRunable() {
    return Begin()->IsProgramRunable();
}

} // namespace qncomm
