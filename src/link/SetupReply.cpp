#include "SetupReply.h"

#include "PortSettings.h"
#include "common/Text.h"
#include "link/clsDataLink.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qncomm {
namespace {

struct ValueItem {
    std::string_view name;
    std::optional<std::string> (*normalize)(std::string_view);
    std::string SetupReply::*member;
};

constexpr std::array ValueItems = {
    ValueItem{",BAUDRATE", NormalBaudrate, &SetupReply::baudrate},
    ValueItem{",PARITY", NormalParity, &SetupReply::parity},
    ValueItem{",CHAR LENGTH", NormalDatabits, &SetupReply::databits},
    ValueItem{",STOPBITS", NormalStopbits, &SetupReply::stopbits},
};

struct FlowItem {
    std::string_view name;
    enumFlowControl bit;
};

constexpr std::array FlowItems = {
    FlowItem{",FLOWCONTROL,XON/XOFF,DATA FROM HOST", Software_Flowcontrol},
    FlowItem{",FLOWCONTROL,XON/XOFF,DATA TO HOST", Software_Flowcontrol},
    FlowItem{",FLOWCONTROL,RTS/CTS", Hardware_Flowcontrol},
};

bool Names(const std::string& line, const std::string& channel, std::string_view item) {
    return line.find(channel + std::string(item)) != std::string::npos;
}

constexpr std::size_t LongestSetupText = 32UL * 1024; ///< several times what any printer lists
constexpr std::size_t MostStrangeLines = 10;          ///< a damaged line costs no printer

std::string UartName(std::int16_t channel) {
    return "UART" + std::to_string(channel);
}

} // namespace

SetupProgress ProgressOfSetup(std::string_view text, std::string_view command,
                              std::int16_t channel) {
    const std::size_t begin =
        std::min(text.find(command), UpperCase(text).find(UartName(channel) + ","));
    if (begin == std::string_view::npos) return SetupProgress::NotBegun;
    const std::string_view listing = text.substr(begin);
    if (listing.find("Ok\r\n") != std::string_view::npos) return SetupProgress::Complete;
    const std::vector<std::string> lines = SplitNonEmpty(listing, CrLf);
    const auto strange = std::ranges::count_if(
        lines, [](const std::string& line) { return line.find(',') == std::string::npos; });
    const bool foreign =
        listing.size() > LongestSetupText || static_cast<std::size_t>(strange) > MostStrangeLines;
    return foreign ? SetupProgress::Foreign : SetupProgress::Listing;
}

std::optional<SetupReply> ParseSetupReply(std::string_view text, std::int16_t channel) {
    const std::string uart = UartName(channel);
    SetupReply reply;
    std::size_t found = 0;
    for (const std::string& line : SplitNonEmpty(UpperCase(NormalizeLineEnds(text)), CrLf)) {
        const std::string value = Trim(std::string_view(line).substr(line.rfind(',') + 1));
        for (const ValueItem& item : ValueItems) {
            if (!Names(line, uart, item.name)) continue;
            auto normal = item.normalize(value);
            if (!normal) return std::nullopt;
            reply.*item.member = *std::move(normal);
            ++found;
        }
        for (const FlowItem& item : FlowItems)
            if (value == "ENABLE" && Names(line, uart, item.name)) reply.flowcontrol |= item.bit;
    }
    if (found != ValueItems.size()) return std::nullopt;
    for (const ValueItem& item : ValueItems) // four lines, but one value twice
        if ((reply.*item.member).empty()) return std::nullopt;
    return reply;
}

} // namespace qncomm
