// The printer's setup.

#include "Exchange.h"
#include "RowPace.h"
#include "common/Numbers.h"
#include "common/Text.h"
#include "printer/SetupListing.h"

#include <utility>

namespace qncomm {

const std::shared_ptr<PrinterSetup>& clsQuorin::PrinterSetupItems() {
    if (!mPrinterSetupItems) mPrinterSetupItems = std::make_shared<PrinterSetup>();
    return mPrinterSetupItems;
}

void clsQuorin::SetPrinterSetupItems(std::shared_ptr<PrinterSetup> items) {
    mPrinterSetupItems = std::move(items);
}

void clsQuorin::GetSetup() {
    PortClaim claim = Claim();
    if (!claim) return;
    // The printer writes its setup to the port that it is asked on, which a search may just have
    // found.
    const std::string port = "uart" + ToText(std::int32_t{Link().Stdio()}) + ":";
    const Reply reply = Ask("SETUP WRITE" + Quoted(port), 1000);
    claim.Release();
    const auto items = mPrinterSetupItems = std::make_shared<PrinterSetup>();
    RowPace pace(Link());
    for (std::size_t i = 1; i + 1 < reply.size(); ++i) {
        pace.Next();
        auto item = std::make_shared<clsPrinterSetupItem>(ParseSetupLine(reply[i]));
        const std::string key = item->Key;
        items->Add(std::move(item), key);
    }
}

void clsQuorin::ChangePrinterSetupItem(std::string_view sSetupKey, std::string_view sValue) {
    Run({.line = "SETUP" + Quoted(UpperCase(sSetupKey).append(",").append(sValue))});
}

void clsQuorin::SetupWriteFile(std::string_view sFullName) {
    Run({.line = "SETUP WRITE" + Quoted(sFullName), .dirty = {std::string(sFullName)}});
}

void clsQuorin::SetupLoadFile(std::string_view sFullName) {
    Run({.line = "SETUP" + Quoted(sFullName)});
}

} // namespace qncomm
