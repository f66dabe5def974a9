#include "Models.h"

#include <algorithm>

namespace qncomm {
namespace {

using Devices = std::array<std::string_view, 4>;

constexpr Devices OneCard{"ram:", "rom:", "card1:"};
constexpr Devices TwoCards{"ram:", "rom:", "card1:", "card2:"};
constexpr Devices NoCard{"ram:", "rom:"};
constexpr Devices Extended{"c:", "tmp:", "rom:", "card1:"};

constexpr std::array Models{
    PrinterModel{"R7A", OneCard, "ram:"},
    PrinterModel{"R7B", OneCard, "ram:"},
    PrinterModel{.code = "R7C", .devices = TwoCards, .trueType = true, .lists = false},
    PrinterModel{"R7D", NoCard, "ram:"},
    PrinterModel{"R7E", OneCard, "ram:"},
    PrinterModel{"R7F", OneCard, "ram:"},
    PrinterModel{"R7EZV", Extended, "tmp:", true, true},
    PrinterModel{"R7FZV", Extended, "tmp:", true, true},
    PrinterModel{"R7G", Extended, "tmp:", true, true},
    PrinterModel{"R7H", Extended, "tmp:", true, true},
};

} // namespace

const PrinterModel* FindModel(std::string_view code) {
    const auto* const found = std::find_if(Models.begin(), Models.end(),
                                           [&](const PrinterModel& m) { return m.code == code; });
    return found != Models.end() ? &*found : nullptr;
}

} // namespace qncomm
