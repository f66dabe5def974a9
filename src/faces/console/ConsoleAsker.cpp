#include "console/ConsoleAsker.h"

#include "console/Charset.h"

#include <ostream>
#include <utility>

namespace qncomm {

std::optional<std::string> ConsoleAsker::Ask(std::string_view sQuestion) {
    if (!HasGiven() && !mInput.IsTerminal()) return std::nullopt;
    mStatus.Clear();
    mErr << WithoutControls(DisplayText(sQuestion)) << ' ' << std::flush;
    if (!HasGiven()) return ReadAnswer(mInput, mErr);
    std::string answer = std::move(mGiven.front());
    mGiven.pop_front();
    mErr << WithoutControls(answer) << std::endl;
    return answer;
}

void ConsoleAsker::Tell(std::string_view sLine) {
    mStatus.Clear();
    mErr << WithoutControls(DisplayText(sLine)) << std::endl;
}

} // namespace qncomm
