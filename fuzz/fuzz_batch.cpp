// Any line of a batch file: it is understood or refused with a reason, its words come back when
// they are quoted again, and an understood call has arguments that its member takes.

#include "BatchFile.h"
#include "Choices.h"

#include <string>

namespace qnctl {
namespace {

using qncomm::fuzz::Promise;

std::string Quoted(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        line += " \"";
        for (const char c : word)
            line += c == '"' ? std::string("\"\"") : std::string(1, c);
        line += '"';
    }
    return line;
}

void Check(std::string_view line) {
    auto words = WordsOf(line);
    if (!words) return;
    Promise(WordsOf(Quoted(*words)) == words);
    if (words->empty()) return;
    const std::string member = words->front();
    words->erase(words->begin());
    Outcome outcome;
    const auto call = UnderstandCall(member, *words, outcome);
    Promise(call.has_value() == outcome.Ok());
    if (!call) return;
    Promise(call->member != nullptr && !SignatureOf(*call->member).empty());
    Promise(call->arguments.size() <= call->member->parameters.size());
    for (const auto& argument : call->arguments) {
        LineOf(argument);
        static_cast<void>(JsonOf(argument));
    }
}

} // namespace
} // namespace qnctl

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    qncomm::fuzz::Choices choices(data, size);
    while (!choices.IsOver())
        qnctl::Check(choices.TakeUntil('\n'));
    return 0;
}
