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
    return files ? Joined(ControlDesk::NamesOf(files)) : "none";
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

void Nothing(ControlDesk& /*desk*/) {}

void Found(ControlDesk& desk) {
    desk.Control().DoAutoconnect();
}

void FoundAndShown(ControlDesk& desk) {
    desk.Show().DoAutoconnect();
}

/// The user has typed what starts the printer's side of a transfer.
void Started(ControlDesk& desk, const std::string& statement) {
    FoundAndShown(desk);
    desk.mAssembly->Viewport().Type(statement + "\r");
    desk.mReactor.Pass(100);
}

template <std::int16_t protocol>
void Upload(ControlDesk& desk, QNComm& control) {
    control.BinaryUpload(desk.mFolder.Write("DATA.BIN", Payload()), protocol);
}

std::string Uploaded(ControlDesk& desk) {
    desk.mReactor.Pass(1000);
    const std::string files = Joined(desk.Control().Files("c:", true));
    return files + desk.Control().DeviceUsedMem("c:");
}

std::string Downloaded(ControlDesk& desk) {
    return ContentOf(desk.mFolder.File("back"));
}

void UploadModule(ControlDesk& /*desk*/, QNComm& control) {
    ModuleUploadArgs args{.sSourcePath = {}, .sTargetPath = "M.PRG", .sModuleText = Module()};
    control.ModuleUpload(args);
}

void LinkModule(ControlDesk& /*desk*/, QNComm& control) {
    Collection<std::string> modules;
    modules.Add("M.PRG");
    control.ProgramLink(modules, "5 REM head");
}

void SearchInDialog(ControlDesk& desk, QNComm& control) {
    desk.mForms.On<frmCommSettings>([](frmCommSettings& form) {
        form.cmdAutoConnect.Click();
        form.cmdOK.Click();
    });
    control.ShowCommSettings();
}

std::string FoundAt(ControlDesk& desk) {
    return desk.mSettings->ReadValue("Settings", "Baudrate", "") + desk.Control().PrinterType();
}

void InstallLogo(ControlDesk& desk, QNComm& control) {
    control.InstallImage(desk.mFolder.Write("logo.pcx", qncomm::testing::TestPcx(200, 200)));
}

std::string PortIsOpen(ControlDesk& desk) {
    return std::to_string(desk.mAssembly->Serial().PortOpen());
}

std::string OnC(ControlDesk& desk) {
    return Joined(desk.Control().Files("c:"));
}

} // namespace

const std::vector<LongOperation>& LongOperations() {
    static const std::vector<LongOperation> operations = {
        {"Search", Nothing, [](ControlDesk&, QNComm& control) { control.DoAutoconnect(); },
         FoundAt},
        {"SearchInDialog", Nothing, SearchInDialog, FoundAt},
        {"Show", Nothing, [](ControlDesk&, QNComm& control) { control.UserControl_Show(); },
         PortIsOpen},
        {"Hide", FoundAndShown, [](ControlDesk&, QNComm& control) { control.UserControl_Hide(); },
         PortIsOpen},
        {"FirstListing", Nothing, [](ControlDesk&, QNComm& control) { control.Files("c:"); }, OnC},
        {"Listing", Found, [](ControlDesk&, QNComm& control) { control.Files("c:", true); }, OnC},
        {"Setup", Found, [](ControlDesk&, QNComm& control) { control.Setup(); },
         [](ControlDesk& desk) { return std::to_string(desk.Control().Setup()->Count()); }},
        {"Reboot",
         [](ControlDesk& desk) {
             FoundAndShown(desk);
             desk.Control().CopyFile("c:PRICES.DAT", "tmp:GONE");
         },
         [](ControlDesk&, QNComm& control) { control.Reboot(); },
         [](ControlDesk& desk) { return Joined(desk.Control().Files("tmp:")); }},
        {"ModuleUpload", Found, UploadModule, [](ControlDesk& desk) { return desk.Listing(); }},
        {"ProgramLink",
         [](ControlDesk& desk) {
             Found(desk);
             UploadModule(desk, desk.Control());
         },
         LinkModule, [](ControlDesk& desk) { return desk.Listing(); }},
        {"InstallImage", Found, InstallLogo,
         [](ControlDesk& desk) { return Joined(desk.Control().Images()); }},
        {"InstallFont", Found,
         [](ControlDesk& desk, QNComm& control) {
             control.InstallFont(desk.mFolder.Write("mine.ttf", qncomm::testing::TestFont()));
         },
         [](ControlDesk& desk) { return Joined(desk.Control().Fonts()); }},
        {"KermitUpload", Found,
         [](ControlDesk& desk, QNComm& control) {
             control.KermitUpload(desk.mFolder.Write("DATA.BIN", Payload()), "c:DATA.BIN");
         },
         Uploaded},
        {"KermitDownload", Found,
         [](ControlDesk& desk, QNComm& control) {
             control.KermitDownload("c:STARTUP.PRG", desk.mFolder.File("back"));
         },
         Downloaded},
        {"BinaryUploadByKermit", [](ControlDesk& desk) { Started(desk, "TRANSFER K \"R\""); },
         Upload<BinaryKermit>, Uploaded},
        {"BinaryUploadByZModem", [](ControlDesk& desk) { Started(desk, "TRANSFER Z \"R\""); },
         Upload<BinaryZModem>, Uploaded},
        {"BinaryDownload",
         [](ControlDesk& desk) { Started(desk, "TRANSFER Z \"S\",\"c:STARTUP.PRG\""); },
         [](ControlDesk& desk, QNComm& control) {
             control.BinaryDownload(desk.mFolder.File("back"), BinaryZModem);
         },
         Downloaded},
    };
    return operations;
}

} // namespace qncomm::testing
