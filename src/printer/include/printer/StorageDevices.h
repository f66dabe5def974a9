#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace qncomm {

/// What a storage device of a printer is made of.
enum class StorageKind : std::uint8_t {
    Memory,   ///< built in, can be written
    Card,     ///< a slot for a card, which may be empty
    ReadOnly, ///< built in, cannot be written and is never formatted
};

/// A storage device that a printer may have.
struct StorageDevice {
    std::string_view name;                  ///< lower case with the colon, such as "ram:"
    StorageKind kind = StorageKind::Memory; ///< what it is made of
};

/// Every storage device of any model, in the order of the device table. Which of them a printer has
/// is told by clsQuorin::Devices.
inline constexpr std::array StorageDevices{
    StorageDevice{"ram:", StorageKind::Memory}, StorageDevice{"rom:", StorageKind::ReadOnly},
    StorageDevice{"card1:", StorageKind::Card}, StorageDevice{"card2:", StorageKind::Card},
    StorageDevice{"c:", StorageKind::Memory},   StorageDevice{"tmp:", StorageKind::Memory}};

/// The place of the fonts in the device table: a listing, not storage.
inline constexpr std::string_view FontsDevice = "fonts:";
/// The place of the images in the device table: a listing, not storage.
inline constexpr std::string_view ImagesDevice = "images:";

} // namespace qncomm
