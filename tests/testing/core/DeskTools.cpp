#include "testing/core/DeskTools.h"

#include <utility>

namespace qncomm::testing {
namespace {

std::optional<std::string> TakeFirst(std::deque<std::string>& answers) {
    if (answers.empty()) return std::nullopt;
    std::string answer = std::move(answers.front());
    answers.pop_front();
    return answer;
}

} // namespace

std::string ScriptedInputs::ShowInputBox(const InputBox& box) {
    mBoxes.push_back(box);
    if (mOnBox) mOnBox();
    return TakeFirst(mAnswers).value_or("");
}

std::optional<std::string> ScriptedFileDialogs::ChooseFile(const FileDialog& dialog) {
    mShown.push_back(dialog);
    if (mOnDialog) mOnDialog();
    return TakeFirst(mAnswers);
}

} // namespace qncomm::testing
