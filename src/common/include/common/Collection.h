#pragma once

#include "common/KeyPlaces.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"

#include <cstddef>
#include <iterator>
#include <string_view>
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
    void Add(T item, std::string_view sKey = {}) { Insert(mItems.size(), std::move(item), sKey); }

    /// Puts an item before the one at position lBefore, from 1. Raises 9 or 457.
    void AddBefore(std::size_t lBefore, T item, std::string_view sKey = {}) {
        Insert(Place(lBefore), std::move(item), sKey);
    }

    /// How many items there are.
    std::size_t Count() const noexcept { return mItems.size(); }
    /// Whether there are none.
    bool IsEmpty() const noexcept { return mItems.empty(); }
    /// Whether an item has this key.
    bool Contains(std::string_view sKey) const { return mKeys.Find(LowerCase(sKey)).has_value(); }

    /// The item at position lIndex, from 1. Raises 9.
    const T& Item(std::size_t lIndex) const { return mItems[Place(lIndex)]; }
    /// The same, to be changed in place.
    T& Item(std::size_t lIndex) { return mItems[Place(lIndex)]; }
    /// The item with this key. Raises 5.
    const T& Item(std::string_view sKey) const { return mItems[Place(sKey)]; }
    /// The same, to be changed in place.
    T& Item(std::string_view sKey) { return mItems[Place(sKey)]; }

    /// Takes out the item at position lIndex, from 1. Raises 9.
    void Remove(std::size_t lIndex) { Erase(Place(lIndex)); }
    /// Takes out the item with this key. Raises 5.
    void Remove(std::string_view sKey) { Erase(Place(sKey)); }

    /// Takes out all items.
    void Clear() {
        mItems.clear();
        mKeys.Clear();
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
        reference operator*() const { return mOf->mItems[mAt]; }
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
    ConstIterator end() const { return ConstIterator(*this, mItems.size()); }

  private:
    std::size_t Place(std::size_t lIndex) const {
        if (lIndex < 1 || lIndex > mItems.size()) RaiseRuntimeError(RtSubscript);
        return lIndex - 1;
    }

    std::size_t Place(std::string_view sKey) const {
        const auto found = mKeys.Find(LowerCase(sKey));
        if (!found) RaiseRuntimeError(RtInvalidCall);
        return *found;
    }

    void Insert(std::size_t place, T item, std::string_view sKey) {
        if (!mKeys.Insert(place, LowerCase(sKey))) RaiseRuntimeError(RtDuplicateKey);
        mItems.insert(mItems.begin() + static_cast<std::ptrdiff_t>(place), std::move(item));
    }

    void Erase(std::size_t place) {
        mKeys.Erase(place);
        mItems.erase(mItems.begin() + static_cast<std::ptrdiff_t>(place));
    }

    std::vector<T> mItems;
    KeyPlaces mKeys; ///< lower case
};

} // namespace qncomm
