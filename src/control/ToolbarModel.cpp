#include "control/ToolbarModel.h"

#include "common/RuntimeErrors.h"
#include "common/Text.h"

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

constexpr std::array<std::string_view, 18> ButtonKeys = {
    "CommSettings", "Autoconnect", "Clear",   "Copy",      "Paste",
    "UploadA",      "DownloadA",   "UploadB", "DownloadB", "FunctionkeysSetup",
    "F1",           "F2",          "F3",      "F4",        "F5",
    "F6",           "F7",          "F8"};

} // namespace

ToolbarModel::ToolbarModel() {
    for (const std::string_view key : ButtonKeys)
        mButtons.push_back({.key = std::string(key), .toolTip = {}});
}

ToolbarButton* ToolbarModel::Locate(std::string_view key) {
    const ToolbarButton* found = Find(key);
    return found != nullptr ? &mButtons[static_cast<std::size_t>(found - mButtons.data())]
                            : nullptr;
}

ToolbarButton& ToolbarModel::Require(std::string_view key) {
    ToolbarButton* button = Locate(key);
    if (button == nullptr) RaiseRuntimeError(RtInvalidCall);
    return *button;
}

const ToolbarButton* ToolbarModel::Find(std::string_view sKey) const {
    const auto found = std::find_if(mButtons.begin(), mButtons.end(), [&](const auto& button) {
        return EqualNoCase(button.key, sKey);
    });
    return found != mButtons.end() ? &*found : nullptr;
}

const ToolbarButton& ToolbarModel::At(std::int32_t lIndex) const {
    if (lIndex < 1 || lIndex > static_cast<std::int32_t>(mButtons.size()))
        RaiseRuntimeError(RtSubscript);
    return mButtons[static_cast<std::size_t>(lIndex) - 1];
}

void ToolbarModel::SetToolTip(std::string_view sKey, std::string_view sTip) {
    Store(Require(sKey).toolTip, std::string(sTip));
}

void ToolbarModel::SetStyle(std::string_view sKey, ToolbarButtonStyle style) {
    Store(Require(sKey).style, style);
}

void ToolbarModel::Press(std::string_view sKey) {
    ToolbarButton* button = Locate(sKey);
    if (button != nullptr && button->style == ToolbarButtonStyle::Toggle)
        Store(button->pressed, !button->pressed);
}

void ToolbarModel::Click(std::string_view sKey) {
    const ToolbarButton* button = Locate(sKey);
    if (button == nullptr || !TakesInput()) return;
    Press(sKey);
    Clicked.Raise(button->key);
}

} // namespace qncomm
