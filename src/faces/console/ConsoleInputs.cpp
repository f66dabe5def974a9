#include "console/ConsoleInputs.h"

#include "common/Text.h"
#include "console/Charset.h"

namespace qncomm {

std::string ConsoleInputs::ShowInputBox(const InputBox& box) {
    std::string question = ReplaceAll(box.prompt, CrLf, " ");
    if (!box.answer.empty()) question += " [" + box.answer + "]";
    const auto answer = mAsker.Ask(question);
    if (!answer) return {};
    TypedText typed; // a character that the printer lacks becomes "?"
    return typed.Feed(*answer);
}

} // namespace qncomm
