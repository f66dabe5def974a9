#include "testing/core/RecordingDesktop.h"

#include <gtest/gtest.h>

namespace qncomm::testing {

MsgBoxResult RecordingDesktop::ShowMsgBox(const MsgBox& box) {
    mBoxes.push_back(box);
    if (box.buttons == MsgBoxButtons::Ok) return MsgBoxResult::Ok;
    if (mAnswers.empty()) {
        ADD_FAILURE() << "no answer was given to: " << box.text;
        return MsgBoxResult::No;
    }
    const MsgBoxResult answer = mAnswers.front();
    mAnswers.pop_front();
    return answer;
}

} // namespace qncomm::testing
