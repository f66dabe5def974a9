#include "label/BuiltInFonts.h"

#include "Text.h"

#include <algorithm>
#include <array>

namespace qnsim {
namespace {

// The letters tell the family, the digits the height, the suffix the orientation: .1 along, .2
// across.
constexpr std::array<std::string_view, 20> FontNames{
    "MS030RMN.1", "MS030RMN.2", "MS050RMN.1", "MS050RMN.2", "MS060BMN.1",
    "MS060BMN.2", "OB035RM1.1", "OB035RM1.2", "SW020BSN.1", "SW020BSN.2",
    "SW030RSN.1", "SW030RSN.2", "SW050RSN.1", "SW050RSN.2", "SW060BSN.1",
    "SW060BSN.2", "SW080BSN.1", "SW080BSN.2", "SW120BSN.1", "SW120BSN.2"};

} // namespace

std::span<const std::string_view> BuiltInFontNames() {
    return FontNames;
}

bool IsBuiltInFont(std::string_view name) {
    return std::find(FontNames.begin(), FontNames.end(), Upper(name)) != FontNames.end();
}

} // namespace qnsim
