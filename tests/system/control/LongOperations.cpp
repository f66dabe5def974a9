#include "LongOperations.h"

#include "testing/printer/TestPictures.h"

#include "dialogs/frmCommSettings.h"

namespace qncomm::testing {
namespace {

std::string Joined(const Strings& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    return text;
}

std::string Joined(const std::shared_ptr<PrinterFiles>& files) {
    return files ? Joined(AssemblyRig::NamesOf(files)) : "none";
}

std::string Payload() {
    std::string bytes(6000, '\0');
    for (std::size_t at = 0; at < bytes.size(); ++at)
        bytes[at] = static_cast<char>(at * 11 + at / 256);
    return bytes;
}

std::string Module() {
    std::string text;
    for (int line = 1; line <= 40; ++line)
        text += std::to_string(line * 10) + " REM a line\r\n";
    return text;
}

void Nothing(AssemblyRig& /*rig*/) {}

void Found(AssemblyRig& rig) {
    rig.Control().DoAutoconnect();
}

void FoundAndShown(AssemblyRig& rig) {
    rig.Show().DoAutoconnect();
}

/// The user has typed what starts the printer's side of a transfer.
void Started(AssemblyRig& rig, const std::string& statement) {
    FoundAndShown(rig);
    rig.mAssembly->Viewport().Type(statement + "\r");
    rig.mReactor.Pass(100);
}

template <std::int16_t protocol>
void Upload(AssemblyRig& rig, QNComm& control) {
    control.BinaryUpload(rig.mFolder.Write("DATA.BIN", Payload()), protocol);
}

std::string Uploaded(AssemblyRig& rig) {
    rig.mReactor.Pass(1000);
    const std::string files = Joined(rig.Control().Files("c:", true));
    return files + rig.Control().DeviceUsedMem("c:");
}

std::string Downloaded(AssemblyRig& rig) {
    return ContentOf(rig.mFolder.File("back"));
}

void UploadModule(AssemblyRig& /*rig*/, QNComm& control) {
    ModuleUploadArgs args{.sSourcePath = {}, .sTargetPath = "M.PRG", .sModuleText = Module()};
    control.ModuleUpload(args);
}

void LinkModule(AssemblyRig& /*rig*/, QNComm& control) {
    Collection<std::string> modules;
    modules.Add("M.PRG");
    control.ProgramLink(modules, "5 REM head");
}

void SearchInDialog(AssemblyRig& rig, QNComm& control) {
    rig.mForms.On<frmCommSettings>([](frmCommSettings& form) {
        form.cmdAutoConnect.Click();
        form.cmdOK.Click();
    });
    control.ShowCommSettings();
}

std::string FoundAt(AssemblyRig& rig) {
    return rig.mSettings->ReadValue("Settings", "Baudrate", "") + rig.Control().PrinterType();
}

void InstallLogo(AssemblyRig& rig, QNComm& control) {
    control.InstallImage(rig.mFolder.Write("logo.pcx", qncomm::testing::TestPcx(200, 200)));
}

std::string PortIsOpen(AssemblyRig& rig) {
    return std::to_string(rig.mAssembly->Serial().PortOpen());
}

std::string OnC(AssemblyRig& rig) {
    return Joined(rig.Control().Files("c:"));
}

} // namespace

const std::vector<LongOperation>& LongOperations() {
    static const std::vector<LongOperation> operations = {
        {"Search", Nothing, [](AssemblyRig&, QNComm& control) { control.DoAutoconnect(); },
         FoundAt},
        {"SearchInDialog", Nothing, SearchInDialog, FoundAt},
        {"Show", Nothing, [](AssemblyRig&, QNComm& control) { control.UserControl_Show(); },
         PortIsOpen},
        {"Hide", FoundAndShown, [](AssemblyRig&, QNComm& control) { control.UserControl_Hide(); },
         PortIsOpen},
        {"FirstListing", Nothing, [](AssemblyRig&, QNComm& control) { control.Files("c:"); }, OnC},
        {"Listing", Found, [](AssemblyRig&, QNComm& control) { control.Files("c:", true); }, OnC},
        {"Setup", Found, [](AssemblyRig&, QNComm& control) { control.Setup(); },
         [](AssemblyRig& rig) { return std::to_string(rig.Control().Setup()->Count()); }},
        {"Reboot",
         [](AssemblyRig& rig) {
             FoundAndShown(rig);
             rig.Control().CopyFile("c:PRICES.DAT", "tmp:GONE");
         },
         [](AssemblyRig&, QNComm& control) { control.Reboot(); },
         [](AssemblyRig& rig) { return Joined(rig.Control().Files("tmp:")); }},
        {"ModuleUpload", Found, UploadModule, [](AssemblyRig& rig) { return rig.Listing(); }},
        {"ProgramLink",
         [](AssemblyRig& rig) {
             Found(rig);
             UploadModule(rig, rig.Control());
         },
         LinkModule, [](AssemblyRig& rig) { return rig.Listing(); }},
        {"InstallImage", Found, InstallLogo,
         [](AssemblyRig& rig) { return Joined(rig.Control().Images()); }},
        {"InstallFont", Found,
         [](AssemblyRig& rig, QNComm& control) {
             control.InstallFont(rig.mFolder.Write("mine.ttf", qncomm::testing::TestFont()));
         },
         [](AssemblyRig& rig) { return Joined(rig.Control().Fonts()); }},
        {"KermitUpload", Found,
         [](AssemblyRig& rig, QNComm& control) {
             control.KermitUpload(rig.mFolder.Write("DATA.BIN", Payload()), "c:DATA.BIN");
         },
         Uploaded},
        {"KermitDownload", Found,
         [](AssemblyRig& rig, QNComm& control) {
             control.KermitDownload("c:STARTUP.PRG", rig.mFolder.File("back"));
         },
         Downloaded},
        {"BinaryUploadByKermit", [](AssemblyRig& rig) { Started(rig, "TRANSFER K \"R\""); },
         Upload<BinaryKermit>, Uploaded},
        {"BinaryUploadByZModem", [](AssemblyRig& rig) { Started(rig, "TRANSFER Z \"R\""); },
         Upload<BinaryZModem>, Uploaded},
        {"BinaryDownload",
         [](AssemblyRig& rig) { Started(rig, "TRANSFER Z \"S\",\"c:STARTUP.PRG\""); },
         [](AssemblyRig& rig, QNComm& control) {
             control.BinaryDownload(rig.mFolder.File("back"), BinaryZModem);
         },
         Downloaded},
    };
    return operations;
}

} // namespace qncomm::testing
