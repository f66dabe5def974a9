// Installing, removing and printing fonts.

#include "Exchange.h"
#include "Models.h"
#include "common/Numbers.h"
#include "common/Text.h"
#include "common/modErrorHandling.h"
#include "printer/StorageDevices.h"

#include <array>

namespace qncomm {
namespace {

constexpr std::string_view InstallFontSource = "clsQuorin:InstallFont";
constexpr std::string_view SampleText = "The quick brown fox...";
constexpr std::int16_t SampleSize = 12;
constexpr std::int16_t SampleWidth = 100;
constexpr std::int16_t SampleDirection = 1;
constexpr std::int32_t PrintFontTimeout = 5000;
constexpr std::int32_t InstallFontTimeout = 10000;

/// How text of each direction is anchored and turned, from direction 1 on.
constexpr std::array<std::string_view, 4> DirectionStatements{
    "AN 1:DIR 1:", "AN 3:DIR 2:", "AN 9:DIR 3:", "AN 7:DIR 4:"};

/// Firmware versions from which a font statement takes more, compared as texts.
constexpr std::string_view TakesSize = "7.00";
constexpr std::string_view TakesWidth = "7.20";

/// A font whose name ends in ".1" prints upright only, one in ".2" turned only.
std::int16_t DirectionForFont(std::string_view font, std::int16_t direction) {
    if (font.ends_with(".1") && (direction == 2 || direction == 4))
        return static_cast<std::int16_t>(direction - 1);
    if (font.ends_with(".2") && (direction == 1 || direction == 3))
        return static_cast<std::int16_t>(direction + 1);
    return direction;
}

std::string_view DirectionStatement(std::int16_t direction) {
    if (direction < 1 || direction > static_cast<std::int16_t>(DirectionStatements.size()))
        return {};
    return DirectionStatements[static_cast<std::size_t>(direction) - 1];
}

std::string Number(std::int16_t value) {
    return ToText(std::int32_t{value});
}

} // namespace

void clsQuorin::RemoveFont(std::string_view sFontName) {
    Run({.line = "REMOVE FONT " + Quoted(sFontName), .dirty = {std::string(FontsDevice)}});
}

void clsQuorin::InstallFont(const std::string& sFullFontPath, bool bPermanent) {
    if (!mFiles.Exists(sFullFontPath)) RaiseError(ErrFontName, InstallFontSource);
    const std::string code = PrinterType();
    if (code.empty()) { // nobody was asked: this is no model without TrueType fonts
        mDesktop.Log(PortRefused);
        return;
    }
    const PrinterModel* model = FindModel(code);
    if (model == nullptr || !model->trueType) RaiseError(ErrNoTrueType, InstallFontSource);
    PortClaim claim = Claim();
    if (!claim) return;
    if (!CarriesRawBytes()) {
        claim.Release();
        RaiseError(ErrImageSettings, InstallFontSource);
    }
    LoadFile({.command = "IMAGE LOAD ",
              .path = sFullFontPath,
              .options = bPermanent ? R"(,"S")" : R"(,"")",
              .removal = "REMOVE FONT ",
              .timeout = InstallFontTimeout});
    claim.Release();
    SetDeviceDirty(FontsDevice);
}

void clsQuorin::PrintFont(std::string& sText, std::string_view sFontName, std::int16_t& iSize,
                          std::int16_t iSlant, std::int16_t& iWidth, std::int16_t& iDir,
                          bool bUcase, bool bInverse) {
    if (sText.empty()) sText = SampleText;
    if (iDir == 0) iDir = SampleDirection;
    if (iSize == 0) iSize = SampleSize;
    if (iWidth == 0) iWidth = SampleWidth;
    if (bUcase) sText = UpperCase(sText);
    PortClaim claim = Claim();
    if (!claim) return;
    // Asked before the first piece of the statement: the answer may cost an exchange of its own.
    const std::string version = FirmwareVersionNumber();
    std::string font = "FT" + Quoted(sFontName);
    if (version >= TakesSize) font += "," + Number(iSize) + "," + Number(iSlant);
    if (version >= TakesWidth) font += "," + Number(iWidth);
    Send(std::string("CLL:PP 1,1:") + (bInverse ? "INVIMAGE" : "NORIMAGE") + ":");
    Send(DirectionStatement(DirectionForFont(sFontName, iDir)));
    Send(font + ":");
    Ask("PT" + Quoted(sText) + ":PF", PrintFontTimeout);
    claim.Release();
}

} // namespace qncomm
