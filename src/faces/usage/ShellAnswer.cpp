#include "usage/ShellAnswer.h"

#include "usage/ManualPage.h"

#include "common/SafeText.h"

namespace qncomm {

std::optional<ShellAnswer> AnswerShell(const std::vector<std::string>& arguments,
                                       const std::function<Usage()>& usage,
                                       std::string_view version, const LiveNames& live) {
    if (arguments.empty()) return std::nullopt;
    if (arguments.front() == "--manual") return ShellAnswer{ManualPage(usage(), version)};
    if (arguments.front() != "--complete") return std::nullopt;
    const Offers offers = Complete(usage(), {arguments.begin() + 1, arguments.end()}, live);
    ShellAnswer answer;
    for (const Offer& offer : offers.words)
        if (WithoutControls(offer.word) == offer.word) // a shell would type something else
            answer.text += offer.word + '\t' + WithoutControls(offer.help) + '\n';
    if (offers.files) answer.status = ShellAnswer::Files;
    return answer;
}

} // namespace qncomm
