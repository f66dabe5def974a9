#pragma once

#include "common/Desktop.h"

#include <deque>
#include <string>
#include <vector>

namespace qncomm::testing {

/// A desktop that keeps the boxes it is shown and answers from a list: Ok boxes need no answer, a
/// question without one fails the test and gets No.
class RecordingDesktop : public Desktop {
  public:
    MsgBoxResult ShowMsgBox(const MsgBox& box) override;
    void Log(std::string_view sLine) override { mLog.emplace_back(sLine); }

    std::deque<MsgBoxResult> mAnswers;
    std::vector<MsgBox> mBoxes;
    std::vector<std::string> mLog;
};

} // namespace qncomm::testing
