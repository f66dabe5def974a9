#include "LiveNames.h"

#include "assembly/AllChannelKinds.h"
#include "assembly/PortBook.h"
#include "automation/SurfaceClass.h"
#include "common/MacroRecord.h"
#include "console/Charset.h"
#include "control/ToolbarModel.h"
#include "platform/FileSettings.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

namespace qnctl {
namespace {

using qncomm::FileSettings;
using qncomm::Offer;
using Offers = std::vector<Offer>;
using Store = std::shared_ptr<FileSettings>;

constexpr std::string_view Remembered = "Connection ";

/// Says nothing of a file that cannot be read: whoever presses Tab asks for names.
Store StoreOf(const std::vector<std::string>& words) {
    const auto option = std::ranges::find(words, "--settings");
    const bool named = option != words.end() && option + 1 != words.end();
    return std::make_shared<FileSettings>(named ? *(option + 1) : FileSettings::DefaultPath());
}

Offers Addresses(const Store& store) {
    Offers offers;
    for (const std::string& section : store->Sections())
        if (section.starts_with(Remembered))
            offers.push_back({section.substr(Remembered.size()), "A printer has answered here"});
    const qncomm::PortBook book(store, qncomm::AllChannelKinds());
    for (const qncomm::PortBinding& binding : book.Bindings().List()) {
        offers.push_back({binding.address.text, binding.description});
        offers.push_back({qncomm::NameOfPort(binding.number), binding.address.text});
    }
    offers.push_back({"sim:R7G", "The virtual printer"});
    return offers;
}

Offers Members(const Store& /*store*/) {
    Offers offers;
    for (const qncomm::SurfaceMember& member : qncomm::ControlClass().members)
        offers.push_back({std::string(member.name), {}});
    return offers;
}

Offers Keys(const Store& store) {
    Offers offers;
    const qncomm::ToolbarModel toolbar;
    for (const qncomm::ToolbarButton& button : toolbar.Buttons()) {
        const std::string macro = qncomm::ReadMacro(store.get(), button.key).argument;
        offers.push_back({button.key, qncomm::Utf8FromPrinter(macro)});
    }
    return offers;
}

struct Source {
    std::string_view value;
    Offers (*names)(const Store&);
};
constexpr std::array Sources{Source{"ADDRESS", Addresses}, Source{"MEMBER", Members},
                             Source{"KEY", Keys}};

} // namespace

Offers LiveNames(const std::string& sValue, const std::vector<std::string>& words) {
    const auto* const source = std::ranges::find(Sources, sValue, &Source::value);
    return source != Sources.end() ? source->names(StoreOf(words)) : Offers{};
}

} // namespace qnctl
