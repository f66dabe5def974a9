#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// The keys of a collection's items by their places, from 0: finding one costs the same however
/// many there are, also when somebody else has chosen them. Keys are compared byte by byte; an
/// empty key is none, and any number of items may have none.
class KeyPlaces {
  public:
    /// Where the item with that key stands; nothing for an empty key or one that is not there.
    std::optional<std::size_t> Find(std::string_view sKey) const;

    /// Gives a new item at a place, up to the present count, its key; those from there on move up.
    /// False when another item has the key. Costs time in proportion to the count but at the end.
    bool Insert(std::size_t lPlace, std::string sKey);

    /// Takes out the item at a place; those behind it move down. Costs time in proportion to the
    /// count.
    void Erase(std::size_t lPlace);

    /// Takes out all.
    void Clear();

  private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t place = 0; ///< from 1; 0 for a free slot
    };

    /// The slot that has the key, or the free one where it would stand. There are slots.
    const Slot& SlotOf(std::string_view key, std::uint32_t hash) const;
    /// Notes where each key stands, with so many slots, a power of two.
    void Rebuild(std::size_t slots);
    void Note(std::size_t place);

    std::vector<std::string> mKeys;
    std::vector<Slot> mSlots; ///< at most half of them taken, so that a free one is near
};

} // namespace qncomm
