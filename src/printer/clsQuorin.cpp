#include "printer/clsQuorin.h"

#include "common/Numbers.h"
#include "printer/Listing.h"

#include <utility>

namespace qncomm {

clsQuorin::clsQuorin(clsDataLink& link, Desktop& desktop, HostFiles& files)
    : mLink(&link), mDesktop(desktop), mFiles(files) {}

bool clsQuorin::DoAutoconnect() {
    return Link().AutoConnect(ToInt16(Val(Link().Commport())));
}

std::int16_t clsQuorin::ShowSettingsDlg() {
    return Link().ShowSettingsDlg();
}

bool clsQuorin::PortOpen() {
    PortClaim claim = Claim();
    const bool granted = static_cast<bool>(claim);
    claim.Detach();
    return granted;
}

void clsQuorin::PortClose() {
    Link().ReleasePort();
}

std::string clsQuorin::PrinterType() {
    return Link().ModelText();
}

std::string clsQuorin::FirmwareVersion() {
    return Link().VersionText();
}

std::string clsQuorin::FirmwareVersionNumber() {
    return ParseVersionNumber(FirmwareVersion());
}

void clsQuorin::OutputText(std::string& sText, bool bWaitForEcho) {
    Link().OutputText(sText, bWaitForEcho);
}

const std::shared_ptr<qncomm::RegSettings>& clsQuorin::RegSettings() const {
    return Link().RegSettings();
}

void clsQuorin::SetRegSettings(std::shared_ptr<qncomm::RegSettings> settings) {
    Link().SetRegSettings(std::move(settings));
}

void clsQuorin::TearDown() {
    mLink = nullptr;
    mPrinterDevices.reset();
    mPrinterSetupItems.reset();
    mFontFilter.Clear();
    mRefusedImage.reset();
}

} // namespace qncomm
