// Raw bytes to the printer: whether the settings carry them, and files that travel so.

#include "ChunkSender.h"
#include "Exchange.h"
#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/Text.h"
#include "common/Utf8.h"
#include "common/modErrorHandling.h"

namespace qncomm {
namespace {

constexpr std::string_view InstallImageSource = "clsQuorin:InstallImage";
constexpr std::int32_t FileloadTimeout = 1000;
constexpr std::string_view RawDatabits = "8";

bool HasXonXoff(std::string_view flowcontrol) {
    return (ToInt32(Val(flowcontrol)) & Software_Flowcontrol) != 0;
}

std::string WithoutXonXoff(std::string_view flowcontrol) {
    return ToText(ToInt32(Val(flowcontrol)) & Hardware_Flowcontrol);
}

} // namespace

bool clsQuorin::CarriesRawBytes() {
    return Link().Databits() == RawDatabits && !HasXonXoff(Link().Flowcontrol());
}

bool clsQuorin::IsCommSetForImageLoad() {
    if (CarriesRawBytes()) return true;
    const MsgBoxResult answer =
        AskPerson({.text = "Adjust Comm.settings to support Quorin Image Load?",
                   .buttons = MsgBoxButtons::YesNo,
                   .icon = MsgBoxIcon::Question,
                   .title = "Adjust Comm.Settings"});
    if (answer != MsgBoxResult::Yes) return false;
    AdjustSettings();
    return true;
}

/// Changes what does not fit, the printer first and then this side: from there on both talk the new
/// way, and the next claim finds the printer anew.
void clsQuorin::AdjustSettings() {
    const std::string uart = "SER-COM,UART" + ToText(std::int32_t{Link().Stdio()});
    if (Link().Databits() != RawDatabits) {
        ChangePrinterSetupItem(uart + ",CHAR LENGTH", RawDatabits);
        Link().SetDatabits(RawDatabits);
    }
    if (!HasXonXoff(Link().Flowcontrol())) return;
    for (const std::string_view direction : {"DATA TO HOST", "DATA FROM HOST"}) {
        ChangePrinterSetupItem((uart + ",FLOWCONTROL,XON/XOFF,").append(direction), "DISABLE");
        Link().SetFlowcontrol(WithoutXonXoff(Link().Flowcontrol()));
    }
}

void clsQuorin::RequireImageFile(const std::string& path) {
    if (!mFiles.Exists(path)) RaiseError(ErrImageName, InstallImageSource);
}

/// Raises an error of installing an image or a file, with the port given back before.
void clsQuorin::RefuseImage(PortClaim& claim, std::int32_t number) {
    claim.Release();
    RaiseError(number, InstallImageSource);
}

void clsQuorin::Fileload(const std::string& sFileName, std::string_view /*sDevice*/) {
    RequireImageFile(sFileName);
    PortClaim claim = Claim();
    if (!claim) return;
    if (!IsCommSetForImageLoad()) RefuseImage(claim, ErrImageSettings);
    LoadFile({.command = "FILE& LOAD ",
              .path = sFileName,
              .removal = "KILL ",
              .timeout = FileloadTimeout});
    claim.Release();
}

/// Announces a file of this machine by name and length, sends its bytes and reads the reply. It is
/// opened before the printer hears of it: the printer waits for exactly as many bytes as were
/// announced. What breaks off in between is given up in a way that the printer understands.
void clsQuorin::LoadFile(const FileLoad& load) {
    const std::unique_ptr<HostFile> file = mFiles.Open(load.path);
    const std::string name = Quoted(UpperCase(PrinterNameOf(load.path)));
    Link().BeginLoad(std::string(load.command) + name + "," + std::to_string(file->Length())
                         + std::string(load.options) + "\r",
                     file->Length(), std::string(load.removal) + name);
    const ChunkSender sender(
        [this](std::string_view bytes) { Send(bytes); },
        [this](std::string& message, std::int16_t progress) { Report(message, progress); });
    try {
        sender.SendFile(*file);
        Read(load.timeout);
    } catch (...) {
        GiveUpLoad();
        throw;
    }
}

/// Whatever happens here, the error that has broken the load off is the one to report.
void clsQuorin::GiveUpLoad() {
    try {
        Link().GiveUpLoad();
    } catch (const QNError& error) {
        mDesktop.Log("the printer may still wait for the rest of a load: " + error.Description());
    }
}

} // namespace qncomm
