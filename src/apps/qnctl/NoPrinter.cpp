#include "NoPrinter.h"

#include "console/Charset.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace qnctl {
namespace {

using qncomm::LineTalk;
using qncomm::SearchEnd;

/// What helps against one kind of talk: %P stands for --port and the port, %A for --as and the
/// settings at which it was heard.
struct Advice {
    LineTalk talk;
    std::string_view text;
};

constexpr std::string_view WithProgram =
    "\n  qnctl watch %P%A   shows what it says"
    "\n  qnctl program stop %P%A   ends it"
    "\n  --interrupt   ends it, then carries this command out"
    "\n  --no-listen   searches all the same: the program may take what is typed for its input";

constexpr std::array Advices{
    Advice{LineTalk::Text, WithProgram},
    Advice{LineTalk::Question, WithProgram},
    Advice{LineTalk::Echo, WithProgram},
    Advice{LineTalk::KermitReceiver,
           "\n  qnctl kermit send HOSTFILE --manual %P   sends it the file"
           "\n  qnctl program stop %P%A   ends it"},
    Advice{LineTalk::ZModemReceiver,
           "\n  qnctl binary send HOSTFILE --protocol zmodem %P   sends it the file"
           "\n  qnctl program stop %P%A   ends it"},
    Advice{LineTalk::Boot, "\n  Try again when it has started."},
    Advice{LineTalk::Noise,
           "\n  qnctl watch --hex %P --as 9600,e,7,1   shows what comes at settings of your choice"
           "\n  Look at the printer's own settings, the cable and its length."},
};

std::string AdviceFor(const qncomm::SearchReport& report, const SearchedPort& port) {
    const auto* found = std::find_if(Advices.begin(), Advices.end(), [&](const Advice& advice) {
        return advice.talk == report.heard.talk;
    });
    if (found == Advices.end()) return {};
    std::string text;
    for (std::size_t i = 0; i < found->text.size(); ++i) {
        const std::string_view two = found->text.substr(i, 2);
        if (two == "%P")
            text += "--port " + port.address;
        else if (two == "%A")
            text += " --as " + report.settings;
        else
            text += found->text[i];
        if (two == "%P" || two == "%A") ++i;
    }
    return text;
}

} // namespace

Outcome WhyNoPrinter(qncomm::SearchReport report, const SearchedPort& port) {
    const bool heard = report.heard.talk != LineTalk::Silence;
    if (report.end == SearchEnd::NotSearched || !heard)
        return Refused(ExitStatus::NoPrinter, "No printer answered on " + port.name + ".");
    report.heard.sample = qncomm::Utf8FromPrinter(report.heard.sample);
    Outcome outcome =
        Refused(ExitStatus::NoPrinter, Explain(report, port.name) + AdviceFor(report, port));
    outcome.line = {std::string(NameOf(report.heard.talk)), report.settings};
    return outcome;
}

} // namespace qnctl
