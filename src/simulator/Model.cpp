#include "Model.h"

#include <algorithm>
#include <array>

namespace qnsim {
namespace {

constexpr std::uint64_t Kib = 1024;
constexpr std::uint64_t Mib = 1024 * Kib;

constexpr std::array<DeviceSpec, 3> ClassicDevices{{
    {"ram:", 256 * Kib, false, false},
    {"rom:", 64 * Kib, true, false},
    {"card1:", 1 * Mib, false, false},
}};
constexpr std::array<DeviceSpec, 2> SmallDevices{{
    {"ram:", 128 * Kib, false, false},
    {"rom:", 64 * Kib, true, false},
}};
constexpr std::array<DeviceSpec, 4> TwoCardDevices{{
    {"ram:", 256 * Kib, false, false},
    {"rom:", 64 * Kib, true, false},
    {"card1:", 1 * Mib, false, false},
    {"card2:", 1 * Mib, false, false},
}};
constexpr std::array<DeviceSpec, 4> ExtendedDevices{{
    {"c:", 8 * Mib, false, false},
    {"tmp:", 4 * Mib, false, true},
    {"rom:", 256 * Kib, true, false},
    {"card1:", 16 * Mib, false, false},
}};

constexpr std::array<Model, 10> Models{{
    {"R7A", "Quorin 6.13", true, true, false, 1, 1, 8, 64 * Kib, "ram:", ClassicDevices},
    {"R7B", "Quorin 6.13", true, true, false, 1, 2, 8, 64 * Kib, "ram:", ClassicDevices},
    {"R7C", "V2.10  Label Control", false, false, true, 1, 1, 8, 32 * Kib, "ram:", TwoCardDevices},
    {"R7D", "Quorin 6.40", true, true, false, 1, 1, 8, 48 * Kib, "ram:", SmallDevices},
    {"R7E", "Quorin 7.02", true, true, false, 2, 2, 8, 128 * Kib, "ram:", ClassicDevices},
    {"R7F", "Quorin 7.02", true, true, false, 2, 2, 12, 128 * Kib, "ram:", ClassicDevices},
    {"R7EZV", "Quorin 7.21", true, true, true, 2, 3, 8, 512 * Kib, "c:", ExtendedDevices},
    {"R7FZV", "Quorin 7.21", true, true, true, 2, 3, 12, 512 * Kib, "c:", ExtendedDevices},
    {"R7G", "Quorin 8.30", true, true, true, 2, 3, 8, 2 * Mib, "c:", ExtendedDevices},
    {"R7H", "Quorin 10.04", true, true, true, 1, 3, 12, 2 * Mib, "c:", ExtendedDevices},
}};

} // namespace

const Model* FindModel(std::string_view code) {
    const auto* found = std::find_if(Models.begin(), Models.end(),
                                     [code](const Model& model) { return model.code == code; });
    return found == Models.end() ? nullptr : found;
}

std::span<const Model> AllModels() {
    return Models;
}

} // namespace qnsim
