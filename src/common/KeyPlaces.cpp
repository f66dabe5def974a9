#include "common/KeyPlaces.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

namespace qncomm {
namespace {

constexpr std::size_t FewestSlots = 8;

/// Differs from process to process, so that nobody can choose keys that all go to one slot.
std::uint64_t Seed() {
    static const char here = 0;
    return std::hash<const void*>{}(&here);
}

std::uint32_t HashOf(std::string_view key) {
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15U;
    std::uint64_t hash = Seed() ^ key.size();
    while (!key.empty()) {
        std::uint64_t part = 0;
        const std::size_t size = std::min(key.size(), sizeof part);
        std::memcpy(&part, key.data(), size);
        key.remove_prefix(size);
        hash = (hash ^ part) * factor;
        hash ^= hash >> 29U;
    }
    return static_cast<std::uint32_t>((hash * factor) >> 32U);
}

} // namespace

const KeyPlaces::Slot& KeyPlaces::SlotOf(std::string_view key, std::uint32_t hash) const {
    const std::size_t mask = mSlots.size() - 1;
    std::size_t at = hash & mask;
    while (mSlots[at].place != 0 && (mSlots[at].hash != hash || mKeys[mSlots[at].place - 1] != key))
        at = (at + 1) & mask;
    return mSlots[at];
}

std::optional<std::size_t> KeyPlaces::Find(std::string_view sKey) const {
    if (sKey.empty() || mSlots.empty()) return std::nullopt;
    const Slot& slot = SlotOf(sKey, HashOf(sKey));
    if (slot.place == 0) return std::nullopt;
    return slot.place - 1;
}

bool KeyPlaces::Insert(std::size_t lPlace, std::string sKey) {
    if (Find(sKey)) return false;
    const bool last = lPlace == mKeys.size();
    mKeys.insert(mKeys.begin() + static_cast<std::ptrdiff_t>(lPlace), std::move(sKey));
    if (mKeys.size() * 2 > mSlots.size())
        Rebuild(std::max(mSlots.size() * 2, FewestSlots));
    else if (last)
        Note(lPlace);
    else
        Rebuild(mSlots.size());
    return true;
}

void KeyPlaces::Erase(std::size_t lPlace) {
    mKeys.erase(mKeys.begin() + static_cast<std::ptrdiff_t>(lPlace));
    Rebuild(mSlots.size());
}

void KeyPlaces::Clear() {
    mKeys.clear();
    mSlots.clear();
}

void KeyPlaces::Rebuild(std::size_t slots) {
    mSlots.assign(slots, {});
    for (std::size_t place = 0; place < mKeys.size(); ++place)
        Note(place);
}

void KeyPlaces::Note(std::size_t place) {
    if (mKeys[place].empty()) return;
    const std::uint32_t hash = HashOf(mKeys[place]);
    const Slot& slot = SlotOf(mKeys[place], hash);
    mSlots[static_cast<std::size_t>(&slot - mSlots.data())] = {
        hash, static_cast<std::uint32_t>(place + 1)};
}

} // namespace qncomm
