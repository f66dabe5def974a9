// Installing, removing and printing images.

#include "Exchange.h"
#include "common/Numbers.h"
#include "common/Text.h"
#include "common/Utf8.h"
#include "common/modErrorHandling.h"
#include "printer/StorageDevices.h"

#include <utility>

namespace qncomm {
namespace {

constexpr std::int32_t InstallImageTimeout = 5000;
constexpr std::int32_t PrintImageTimeout = 5000;

constexpr char PcxMark = 10;
constexpr std::string_view PcxVersions = "\5\3";

/// The name under which the printer keeps an image.
std::string ImageName(std::string_view path) {
    return UpperCase(PrinterNameOf(path));
}

} // namespace

void clsQuorin::RemoveImage(std::string_view sImageName) {
    if (PrinterDevices()->IsEmpty()) Images();
    if (Device(ImagesDevice)->Dirty) Images();
    if (!Device(ImagesDevice)->Files->Contains(sImageName)) return;
    Run({.line = "REMOVE IMAGE " + Quoted(sImageName), .dirty = {std::string(ImagesDevice)}});
}

void clsQuorin::InstallImage(const std::string& sImageName, bool bPermanent) {
    RequireImageFile(sImageName);
    PortClaim claim = Claim();
    if (!claim) return;
    if (!IsCommSetForImageLoad()) RefuseImage(claim, ErrImageSettings);
    if (!IsValidPcxImage(sImageName)) RefuseImage(claim, ErrImageFormat);
    RemoveImage(ImageName(sImageName));
    LoadFile({.command = "IMAGE LOAD ",
              .path = sImageName,
              .options = bPermanent ? R"(,"S")" : R"(,"")",
              .removal = "REMOVE IMAGE ",
              .timeout = InstallImageTimeout});
    claim.Release();
    SetDeviceDirty(ImagesDevice);
}

/// Looks at the first two bytes. A file that is no image stays open until the next one or TearDown.
bool clsQuorin::IsValidPcxImage(const std::string& path) {
    std::unique_ptr<HostFile> file = mFiles.Open(path);
    const std::string head = file->Length() >= 2 ? file->Read(2) : std::string(2, '\0');
    if (head[0] == PcxMark && PcxVersions.find(head[1]) != std::string_view::npos) return true;
    mRefusedImage = std::move(file);
    return false;
}

void clsQuorin::PrintImage(const std::string& sImageName, std::int32_t lXPos, std::int32_t lYPos,
                           bool bInverse, bool bReload) {
    PortClaim claim = Claim();
    if (!claim) return;
    const std::string name = ImageName(sImageName);
    if (bReload || !PrinterFileExists(std::string(ImagesDevice) + name)) InstallImage(sImageName);
    Send("CLL:PP" + ToText(lXPos) + "," + ToText(lYPos) + ":" + (bInverse ? "INVIMAGE" : "NORIMAGE")
         + ":");
    Ask("PM" + Quoted(name) + ":PF", PrintImageTimeout);
    claim.Release();
}

} // namespace qncomm
