#include "Model.h"

#include <algorithm>
#include <array>

namespace qnsim {
namespace {

constexpr std::uint64_t kib = 1024;
constexpr std::uint64_t mib = 1024 * kib;

constexpr std::array<DeviceSpec, 3> classicDevices{{
    {"ram:", 256 * kib, false, false},
    {"rom:", 64 * kib, true, false},
    {"card1:", 1 * mib, false, false},
}};
constexpr std::array<DeviceSpec, 2> smallDevices{{
    {"ram:", 128 * kib, false, false},
    {"rom:", 64 * kib, true, false},
}};
constexpr std::array<DeviceSpec, 4> twoCardDevices{{
    {"ram:", 256 * kib, false, false},
    {"rom:", 64 * kib, true, false},
    {"card1:", 1 * mib, false, false},
    {"card2:", 1 * mib, false, false},
}};
constexpr std::array<DeviceSpec, 4> extendedDevices{{
    {"c:", 8 * mib, false, false},
    {"tmp:", 4 * mib, false, true},
    {"rom:", 256 * kib, true, false},
    {"card1:", 16 * mib, false, false},
}};

constexpr std::array<Model, 10> models{{
    {"R7A", "Quorin 6.13", true, true, false, 1, 1, 8, 64 * kib, "ram:", classicDevices},
    {"R7B", "Quorin 6.13", true, true, false, 1, 2, 8, 64 * kib, "ram:", classicDevices},
    {"R7C", "V2.10  Label Control", false, false, true, 1, 1, 8, 32 * kib, "ram:", twoCardDevices},
    {"R7D", "Quorin 6.40", true, true, false, 1, 1, 8, 48 * kib, "ram:", smallDevices},
    {"R7E", "Quorin 7.02", true, true, false, 2, 2, 8, 128 * kib, "ram:", classicDevices},
    {"R7F", "Quorin 7.02", true, true, false, 2, 2, 12, 128 * kib, "ram:", classicDevices},
    {"R7EZV", "Quorin 7.21", true, true, true, 2, 3, 8, 512 * kib, "c:", extendedDevices},
    {"R7FZV", "Quorin 7.21", true, true, true, 2, 3, 12, 512 * kib, "c:", extendedDevices},
    {"R7G", "Quorin 8.30", true, true, true, 2, 3, 8, 2 * mib, "c:", extendedDevices},
    {"R7H", "Quorin 10.04", true, true, true, 1, 3, 12, 2 * mib, "c:", extendedDevices},
}};

} // namespace

const Model* FindModel(std::string_view code) {
    const auto* found = std::find_if(models.begin(), models.end(),
                                     [code](const Model& model) { return model.code == code; });
    return found == models.end() ? nullptr : found;
}

std::span<const Model> AllModels() {
    return models;
}

} // namespace qnsim
