#pragma once

#include "common/RuntimeErrors.h"
#include "common/Text.h"

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace qncomm {

/// An ordered collection of items, each with an optional key. Positions count from 1; keys are
/// compared without regard to case. Raises 5 for a key that is not there, 9 for a position that is
/// not there and 457 for a key that is taken, with source "QNComm". References to items are valid
/// until the next item is added or removed.
template <class T>
class Collection {
  public:
    /// Appends an item; an empty key means none. Raises 457.
    void Add(T item, std::string_view sKey = {}) { Insert(mEntries.size(), std::move(item), sKey); }

    /// Puts an item before the one at position lBefore, from 1. Raises 9 or 457.
    void AddBefore(std::size_t lBefore, T item, std::string_view sKey = {}) {
        Insert(Place(lBefore), std::move(item), sKey);
    }

    /// How many items there are.
    std::size_t Count() const noexcept { return mEntries.size(); }
    /// Whether there are none.
    bool IsEmpty() const noexcept { return mEntries.empty(); }
    /// Whether an item has this key.
    bool Contains(std::string_view sKey) const { return mPlaces.contains(LowerCase(sKey)); }

    /// The item at position lIndex, from 1. Raises 9.
    const T& Item(std::size_t lIndex) const { return mEntries[Place(lIndex)].item; }
    /// The same, to be changed in place.
    T& Item(std::size_t lIndex) { return mEntries[Place(lIndex)].item; }
    /// The item with this key. Raises 5.
    const T& Item(std::string_view sKey) const { return mEntries[Place(sKey)].item; }
    /// The same, to be changed in place.
    T& Item(std::string_view sKey) { return mEntries[Place(sKey)].item; }

    /// Takes out the item at position lIndex, from 1. Raises 9.
    void Remove(std::size_t lIndex) { Erase(Place(lIndex)); }
    /// Takes out the item with this key. Raises 5.
    void Remove(std::string_view sKey) { Erase(Place(sKey)); }

    /// Takes out all items.
    void Clear() {
        mEntries.clear();
        mPlaces.clear();
    }

    /// Walks over the items in their order; ends with the collection's next change.
    class ConstIterator {
      public:
        using iterator_category = std::forward_iterator_tag; ///< as the standard library wants it
        using value_type = T;                                ///< what it walks over
        using difference_type = std::ptrdiff_t;              ///< as the standard library wants it
        using pointer = const T*;                            ///< items cannot be changed through it
        using reference = const T&;                          ///< items cannot be changed through it

        /// Points nowhere; only good for being assigned to.
        ConstIterator() = default;
        /// Points to the item at position at, here from 0, of a collection that outlives it.
        ConstIterator(const Collection& of, std::size_t at) : mOf(&of), mAt(at) {}
        /// The item that it points to.
        reference operator*() const { return mOf->mEntries[mAt].item; }
        /// A member of that item.
        pointer operator->() const { return &**this; }
        /// Goes to the next item.
        ConstIterator& operator++() {
            ++mAt;
            return *this;
        }
        /// Goes to the next item and returns what it was before.
        ConstIterator operator++(int) {
            const ConstIterator former = *this;
            ++mAt;
            return former;
        }
        /// Whether both point to the same place of the same collection.
        bool operator==(const ConstIterator&) const = default;

      private:
        const Collection* mOf = nullptr;
        std::size_t mAt = 0;
    };

    /// The first item, for a range loop.
    ConstIterator begin() const { return ConstIterator(*this, 0); }
    /// The place behind the last item.
    ConstIterator end() const { return ConstIterator(*this, mEntries.size()); }

  private:
    struct Entry {
        T item;
        std::string key; ///< lower case
    };

    std::size_t Place(std::size_t lIndex) const {
        if (lIndex < 1 || lIndex > mEntries.size()) RaiseRuntimeError(RtSubscript);
        return lIndex - 1;
    }

    std::size_t Place(std::string_view sKey) const {
        const auto found = mPlaces.find(LowerCase(sKey));
        if (found == mPlaces.end()) RaiseRuntimeError(RtInvalidCall);
        return found->second;
    }

    void Insert(std::size_t place, T item, std::string_view sKey) {
        Entry entry{std::move(item), LowerCase(sKey)};
        if (!entry.key.empty() && !mPlaces.emplace(entry.key, place).second)
            RaiseRuntimeError(RtDuplicateKey);
        mEntries.insert(mEntries.begin() + static_cast<std::ptrdiff_t>(place), std::move(entry));
        NumberFrom(place + 1);
    }

    void Erase(std::size_t place) {
        mPlaces.erase(mEntries[place].key);
        mEntries.erase(mEntries.begin() + static_cast<std::ptrdiff_t>(place));
        NumberFrom(place);
    }

    void NumberFrom(std::size_t place) {
        for (; place < mEntries.size(); ++place)
            if (!mEntries[place].key.empty()) mPlaces[mEntries[place].key] = place;
    }

    std::vector<Entry> mEntries;
    std::unordered_map<std::string, std::size_t> mPlaces;
};

} // namespace qncomm
