#include "common/ControlModels.h"

#include "common/RuntimeErrors.h"

#include <algorithm>

namespace qncomm {

void ButtonModel::Click() {
    if (TakesInput()) Clicked.Raise();
}

void CheckBoxModel::Click() {
    if (!TakesInput()) return;
    SetChecked(!mChecked);
    Clicked.Raise();
}

void ListModel::SetEntries(std::vector<Entry> entries) {
    mListIndex = -1;
    mEntries = std::move(entries);
    Changed.Raise();
}

void ListModel::SetListIndex(std::int32_t lIndex) {
    if (lIndex < -1 || lIndex >= static_cast<std::int32_t>(mEntries.size()))
        RaiseRuntimeError(RtSubscript);
    Store(mListIndex, lIndex);
}

bool ListModel::SelectValue(std::int32_t lValue) {
    const auto found = std::find_if(mEntries.begin(), mEntries.end(),
                                    [&](const Entry& entry) { return entry.value == lValue; });
    if (found == mEntries.end()) return false;
    SetListIndex(static_cast<std::int32_t>(found - mEntries.begin()));
    return true;
}

std::int32_t ListModel::SelectedValue() const {
    if (!HasSelection()) RaiseRuntimeError(RtSubscript);
    return mEntries[static_cast<std::size_t>(mListIndex)].value;
}

void ListModel::Pick(std::int32_t lIndex) {
    if (!TakesInput()) return;
    SetListIndex(lIndex);
    Clicked.Raise();
}

void TextBoxModel::SetText(std::string_view sText) {
    if (mText == sText) return;
    mSelStart = mSelLength = 0;
    Store(mText, std::string(sText));
}

void TextBoxModel::Select(std::size_t start, std::size_t length) {
    start = std::min(start, mText.size());
    length = std::min(length, mText.size() - start);
    if (start == mSelStart && length == mSelLength) return;
    mSelStart = start;
    mSelLength = length;
    Changed.Raise();
}

void TextBoxModel::InsertAtCursor(std::string_view sText) {
    mText.replace(mSelStart, mSelLength, sText);
    mSelStart += sText.size();
    mSelLength = 0;
    Changed.Raise();
}

void TextBoxModel::Type(std::string_view sText, std::size_t cursor) {
    if (!TakesInput()) return;
    SetText(sText);
    Select(cursor);
}

void TabStripModel::SetCaption(std::size_t tab, std::string_view sCaption) {
    if (tab >= mCaptions.size()) RaiseRuntimeError(RtSubscript);
    Store(mCaptions[tab], std::string(sCaption));
}

void TabStripModel::Pick(std::size_t tab) {
    if (tab >= mCaptions.size()) RaiseRuntimeError(RtSubscript);
    if (!TakesInput()) return;
    const std::size_t former = mTab;
    if (Store(mTab, tab)) Clicked.Raise(former);
}

void ProgressBarModel::SetValue(std::int32_t lValue) {
    if (lValue < mMin || lValue > mMax) RaiseRuntimeError(RtInvalidCall);
    Store(mValue, lValue);
}

} // namespace qncomm
