#include "HostServices.h"

#include "Values.h"
#include "common/RuntimeErrors.h"

#include <array>
#include <cstddef>

namespace qncomm::bindings {
namespace {

/// What a box with these buttons is answered with when nobody is asked.
MsgBoxResult UsualAnswer(MsgBoxButtons buttons) {
    static constexpr std::array answers{MsgBoxResult::Ok, MsgBoxResult::Cancel, MsgBoxResult::No};
    return answers.at(static_cast<std::size_t>(buttons));
}

bool Offers(MsgBoxButtons buttons, MsgBoxResult answer) {
    switch (answer) {
    case MsgBoxResult::Ok:
        return buttons != MsgBoxButtons::YesNo;
    case MsgBoxResult::Cancel:
        return buttons == MsgBoxButtons::OkCancel;
    case MsgBoxResult::Yes:
    case MsgBoxResult::No:
        return buttons == MsgBoxButtons::YesNo;
    }
    return false;
}

} // namespace

MsgBoxResult HostBoxes::ShowMsgBox(const MsgBox& box) {
    if (mHandler == nullptr) return UsualAnswer(box.buttons);
    const std::string text = Values::Shown(box.text);
    const std::string title = Values::Shown(box.title.empty() ? ProductName : box.title);
    const qn_box shown{text.c_str(), title.c_str(), static_cast<int>(box.buttons),
                       static_cast<int>(box.icon)};
    const auto answer = static_cast<MsgBoxResult>(mHandler(mUser, &shown));
    return Offers(box.buttons, answer) ? answer : UsualAnswer(box.buttons);
}

void HostTrace::Record(std::int64_t lMs, TraceKind kind, std::string_view sBytes) {
    if (mHandler == nullptr) return;
    mSealed = true;
    mHandler(mUser, lMs, static_cast<int>(kind), {sBytes.data(), sBytes.size()});
    mSealed = false;
}

std::string HostSettings::ReadValue(std::string_view sSection, std::string_view sKey,
                                    std::string_view sDefault) const {
    const std::string section(sSection);
    const std::string key(sKey);
    qn_bytes value{};
    const bool found = mFunctions.read(mUser, section.c_str(), key.c_str(), &value) != 0;
    if (!found || (value.bytes == nullptr && value.length > 0)) return std::string(sDefault);
    return {value.bytes, value.length};
}

void HostSettings::WriteValue(std::string_view sSection, std::string_view sKey,
                              std::string_view sValue) {
    const std::string section(sSection);
    const std::string key(sKey);
    if (mFunctions.write(mUser, section.c_str(), key.c_str(), {sValue.data(), sValue.size()}) != 0)
        RaiseRuntimeError(RtPathFileAccess, "RegSettings:WriteValue");
}

} // namespace qncomm::bindings
