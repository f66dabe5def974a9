#include "language/Variables.h"

#include <cmath>

namespace qnsim {
namespace {

constexpr int MostNames = 4096;
constexpr std::size_t Outside = static_cast<std::size_t>(-1);
constexpr double LargestArray = 100'000;

} // namespace

template <typename Values>
int Variables::Slot(std::map<std::string, int, std::less<>>& names, Values& values,
                    const std::string& name) {
    const auto found = names.find(name);
    if (found != names.end()) return found->second;
    if (values.size() >= MostNames) return NoSlot;
    const int slot = static_cast<int>(values.size());
    values.emplace_back();
    names.emplace(name, slot);
    return slot;
}

int Variables::NumberSlot(const std::string& name) {
    return Slot(mNumberNames, mNumbers, name);
}

int Variables::TextSlot(const std::string& name) {
    return Slot(mTextNames, mTexts, name);
}

int Variables::NumberArraySlot(const std::string& name) {
    return Slot(mNumberArrayNames, mNumberArrays, name);
}

int Variables::TextArraySlot(const std::string& name) {
    return Slot(mTextArrayNames, mTextArrays, name);
}

void Variables::SetText(int slot, std::string value) {
    std::string& text = mTexts[static_cast<std::size_t>(slot)];
    mBytes = mBytes - text.size() + value.size();
    text = std::move(value);
}

template <typename Element>
std::size_t Variables::Resolve(std::vector<Element>& array, double index) {
    if (array.empty()) {
        array.resize(DefaultLimit + 1);
        mBytes += array.size() * sizeof(double);
    }
    const double whole = std::nearbyint(index);
    if (!(whole >= 0) || whole >= static_cast<double>(array.size())) return Outside;
    return static_cast<std::size_t>(whole);
}

double* Variables::NumberElement(int slot, double index) {
    auto& array = mNumberArrays[static_cast<std::size_t>(slot)];
    const std::size_t at = Resolve(array, index);
    return at == Outside ? nullptr : &array[at];
}

const std::string* Variables::TextElement(int slot, double index) {
    auto& array = mTextArrays[static_cast<std::size_t>(slot)];
    const std::size_t at = Resolve(array, index);
    return at == Outside ? nullptr : &array[at];
}

Error Variables::SetTextElement(int slot, double index, std::string value) {
    auto& array = mTextArrays[static_cast<std::size_t>(slot)];
    const std::size_t at = Resolve(array, index);
    if (at == Outside) return Error::SubscriptOutOfRange;
    mBytes = mBytes - array[at].size() + value.size();
    array[at] = std::move(value);
    return Error::None;
}

Error Variables::Dimension(int slot, bool text, double last) {
    if (!(last >= 0) || last > LargestArray) return Error::SubscriptOutOfRange;
    const auto at = static_cast<std::size_t>(slot);
    const bool made = text ? !mTextArrays[at].empty() : !mNumberArrays[at].empty();
    if (made) return Error::ArrayAgain;
    const auto count = static_cast<std::size_t>(std::nearbyint(last)) + 1;
    if (text) {
        mTextArrays[at].resize(count);
    } else {
        mNumberArrays[at].resize(count);
    }
    mBytes += count * sizeof(double);
    return Error::None;
}

void Variables::Clear() {
    for (double& number : mNumbers)
        number = 0;
    for (std::string& text : mTexts)
        text.clear();
    for (auto& array : mNumberArrays)
        array.clear();
    for (auto& array : mTextArrays)
        array.clear();
    mBytes = 0;
}

} // namespace qnsim
