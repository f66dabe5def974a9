#pragma once

// The values of a program: numbers, texts and arrays, each name resolved once to a slot.

#include "Errors.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qnsim {

class Variables {
  public:
    static constexpr int NoSlot = -1;
    static constexpr int DefaultLimit = 10; ///< the last index of an array that was not dimensioned

    /// The slot of a name (upper case); a new name gets one. NoSlot when there are too many names.
    int NumberSlot(const std::string& name);
    int TextSlot(const std::string& name);
    int NumberArraySlot(const std::string& name);
    int TextArraySlot(const std::string& name);

    double Number(int slot) const { return mNumbers[static_cast<std::size_t>(slot)]; }
    double& Number(int slot) { return mNumbers[static_cast<std::size_t>(slot)]; }
    const std::string& Text(int slot) const { return mTexts[static_cast<std::size_t>(slot)]; }
    void SetText(int slot, std::string value);

    /// An element, or null when the index is outside the array (which is made on first use).
    double* NumberElement(int slot, double index);
    const std::string* TextElement(int slot, double index);
    Error SetTextElement(int slot, double index, std::string value);
    Error Dimension(int slot, bool text, double last);

    /// Bytes that texts and arrays take.
    std::uint64_t Bytes() const { return mBytes; }

    /// Empties every value; names keep their slots.
    void Clear();

  private:
    template <typename Values>
    int Slot(std::map<std::string, int, std::less<>>& names, Values& values,
             const std::string& name);
    template <typename Element>
    std::size_t Resolve(std::vector<Element>& array, double index);

    std::map<std::string, int, std::less<>> mNumberNames;
    std::map<std::string, int, std::less<>> mTextNames;
    std::map<std::string, int, std::less<>> mNumberArrayNames;
    std::map<std::string, int, std::less<>> mTextArrayNames;
    std::vector<double> mNumbers;
    std::vector<std::string> mTexts;
    std::vector<std::vector<double>> mNumberArrays;
    std::vector<std::vector<std::string>> mTextArrays;
    std::uint64_t mBytes = 0;
};

} // namespace qnsim
