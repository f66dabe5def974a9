// The listings of files, images and fonts.

#include "Exchange.h"
#include "Models.h"
#include "RowPace.h"
#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/Text.h"
#include "printer/Listing.h"
#include "printer/StorageDevices.h"

#include <array>
#include <utility>

namespace qncomm {

/// What differs between the listings of images and fonts, and how rows of any listing are read.
struct clsQuorin::Listing {
    std::string_view command;
    std::string_view device;
    std::optional<std::vector<clsPrinterFile>> (*parseRow)(std::string_view);
    std::string (*complaint)(const std::string& device);
};

namespace {

constexpr std::string_view ListingHeader = "FILES ON";
constexpr std::size_t FirstRow = 1;
constexpr std::size_t FirstRowBehindHeader = 2;

constexpr std::string_view FontFilterSection = "FontsFilterList";
constexpr std::string_view NoFont = "NADA";
constexpr std::array<std::string_view, 20> BitmapFonts{
    "MS030RMN.1", "MS030RMN.2", "MS050RMN.1", "MS050RMN.2", "MS060BMN.1",
    "MS060BMN.2", "OB035RM1.1", "OB035RM1.2", "SW020BSN.1", "SW020BSN.2",
    "SW030RSN.1", "SW030RSN.2", "SW050RSN.1", "SW050RSN.2", "SW060BSN.1",
    "SW060BSN.2", "SW080BSN.1", "SW080BSN.2", "SW120BSN.1", "SW120BSN.2"};

std::string FileRowComplaint(const std::string& device) {
    return "Dubble white spaces are used as part \r\nof a filename on printer PrinterDevice '"
           + device + "'.\r\nCan\u00B4t show all files!";
}

std::string FontRowComplaint(const std::string& /*device*/) {
    return "Dubble white spaces are used as part of a fontname.\r\nCan\u00B4t show all files!";
}

/// Adds what is not there yet.
void AddNew(PrinterFiles& files, clsPrinterFile&& file) {
    const std::string key = UpperCase(file.Name);
    if (!files.Contains(key)) files.Add(std::make_shared<clsPrinterFile>(std::move(file)), key);
}

std::string FontKey(std::size_t index, bool twoDigits) {
    return std::string("Font") + (twoDigits && index < 10 ? "0" : "") + std::to_string(index);
}

} // namespace

/// Whether the model's listings are read; the one without them says so in a box.
bool clsQuorin::ModelLists() {
    const std::string code = PrinterType();
    const PrinterModel* model = FindModel(code);
    if (model != nullptr && !model->lists)
        mDesktop.ShowMsgBox(
            {.text = "File not implemented for the " + code + " printer.", .title = {}});
    return model != nullptr && model->lists;
}

/// The files of the rows from line first to the one before the byte counts. A row that cannot be
/// told apart is left out; all of them are told in one box.
std::shared_ptr<PrinterFiles> clsQuorin::ParseRows(const std::string& device, const Reply& reply,
                                                   std::size_t first, const Listing& listing) {
    auto files = std::make_shared<PrinterFiles>();
    std::size_t odd = 0;
    RowPace pace(Link());
    for (std::size_t i = first; i + 3 <= reply.size(); ++i) {
        pace.Next();
        auto row = listing.parseRow(reply[i]);
        odd += row ? 0 : 1;
        for (clsPrinterFile& file : row.value_or(std::vector<clsPrinterFile>()))
            AddNew(*files, std::move(file));
    }
    if (odd == 0) return files;
    const std::string count = odd == 1 ? "" : "\r\n(" + std::to_string(odd) + " rows)";
    mDesktop.ShowMsgBox(
        {.text = listing.complaint(device) + count, .icon = MsgBoxIcon::Exclamation, .title = {}});
    return files;
}

/// Reads the line before "Ok".
void clsQuorin::ParseBytesLine(clsPrinterDevice& device, const Reply& reply) {
    if (reply.size() < 2) return;
    const ByteCounts counts = ParseByteCounts(reply[reply.size() - 2]);
    device.BytesFree = counts.free.value_or(device.BytesFree);
    device.BytesUsed = counts.used.value_or(device.BytesUsed);
}

void clsQuorin::Files(std::string& sDev, bool /*brefresh*/, bool bListSystemFiles) {
    sDev = LowerCase(sDev);
    IsValidPrinterDevice(sDev);
    const auto reply = Run({.line = "FILES" + Quoted(sDev), .systemLevel = bListSystemFiles});
    if (!reply || !ModelLists()) return;
    const auto device = Device(sDev);
    const std::string header = UpperCase(LineAt(*reply, 1));
    auto files = std::make_shared<PrinterFiles>();
    if (header.starts_with(ListingHeader))
        files = ParseRows(
            device->Name, *reply, FirstRowBehindHeader,
            {.command = {}, .device = {}, .parseRow = ParseFileRow, .complaint = FileRowComplaint});
    device->Files = std::move(files);
    if (header.find(ListingHeader) != std::string::npos) ParseBytesLine(*device, *reply);
    device->Dirty = false;
}

/// Lists one of the two devices whose listings have no header; False when nothing was listed.
bool clsQuorin::ListInto(const Listing& listing) {
    InitFileSystem();
    const auto reply = Run({.line = std::string(listing.command)});
    if (!reply) return false;
    const auto device = Device(listing.device);
    if (!ModelLists()) {
        device->Files = std::make_shared<PrinterFiles>();
        return false;
    }
    device->Files = ParseRows(device->Name, *reply, FirstRow, listing);
    ParseBytesLine(*device, *reply);
    device->Dirty = false;
    return true;
}

void clsQuorin::Images() {
    ListInto({.command = "IMAGES",
              .device = ImagesDevice,
              .parseRow = ParseFileRow,
              .complaint = FileRowComplaint});
}

void clsQuorin::Fonts(bool bFilterBitmaps) {
    const bool listed = ListInto({.command = "FONTS",
                                  .device = FontsDevice,
                                  .parseRow = ParseFontRow,
                                  .complaint = FontRowComplaint});
    if (listed && SystemLevelAllowed(bFilterBitmaps))
        FilterBitmapFonts(*Device(FontsDevice)->Files);
}

void clsQuorin::FilterBitmapFonts(PrinterFiles& fonts) {
    if (mFontFilter.IsEmpty()) FillFontFilter();
    PrinterFiles left;
    RowPace pace(Link());
    for (const auto& font : fonts) {
        pace.Next();
        if (!mFontFilter.Contains(font->Name)) left.Add(font, font->Name);
    }
    fonts = std::move(left);
}

/// The names come from the settings. A default that is written goes under a key of two digits and
/// is read under one without a leading zero: keys Font0 to Font9 are only ever made by a person.
void clsQuorin::FillFontFilter() {
    const auto& settings = RegSettings();
    std::vector<SettingValue> defaults;
    for (std::size_t i = 0; i < BitmapFonts.size(); ++i) {
        std::string name(NoFont);
        if (settings)
            name = UpperCase(settings->ReadValue(FontFilterSection, FontKey(i, false), NoFont));
        if (name == NoFont) {
            name = BitmapFonts[i];
            defaults.push_back({std::string(FontFilterSection), FontKey(i, true), name});
        }
        if (!mFontFilter.Contains(name)) mFontFilter.Add(name, name);
    }
    if (settings) KeepFontDefaults(*settings, defaults);
}

/// Defaults that cannot be kept are no reason not to list.
void clsQuorin::KeepFontDefaults(qncomm::RegSettings& settings,
                                 const std::vector<SettingValue>& defaults) {
    try {
        settings.WriteValues(defaults);
    } catch (const QNError& error) {
        mDesktop.Log(error.Description());
    }
}

bool clsQuorin::PrinterFileExists(std::string_view sFullName) {
    const std::size_t colon = sFullName.find(':') + 1;
    std::string name(sFullName.substr(0, colon));
    const bool images = EqualNoCase(name, ImagesDevice);
    const bool fonts = EqualNoCase(name, FontsDevice);
    if (images || fonts)
        InitFileSystem(); // no model "has" these two: they are listings, not storage
    else
        IsValidPrinterDevice(name);
    if (Device(name)->Dirty) {
        if (images)
            Images();
        else if (fonts)
            Fonts();
        else
            Files(name);
    }
    return Device(name)->Files->Contains(sFullName.substr(colon));
}

} // namespace qncomm
