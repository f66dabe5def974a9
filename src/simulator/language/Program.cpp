#include "language/Program.h"

#include "Text.h"
#include "language/Parser.h"

namespace qnsim {
namespace {

constexpr int NumberStep = 10;

} // namespace

void Program::Store(int number, std::string_view text) {
    const auto found = mLines.find(number);
    if (found != mLines.end()) {
        mBytes -= BytesOf(found->second);
        mLines.erase(found);
    }
    if (text.empty()) return;
    mLines.emplace(number, std::string(text));
    mBytes += BytesOf(text);
}

void Program::Clear() {
    mLines.clear();
    mBytes = 0;
}

int Program::NextNumber() const {
    return mLines.empty() ? NumberStep
                          : (mLines.rbegin()->first / NumberStep) * NumberStep + NumberStep;
}

std::string Program::Listing(int from, int to) const {
    std::string listing;
    const auto end = mLines.upper_bound(to);
    for (auto line = mLines.lower_bound(from); line != end && line != mLines.end(); ++line)
        listing += std::to_string(line->first) + " " + line->second + "\r\n";
    return listing;
}

Program::Reading Program::ReadListing(std::string_view text) {
    Reading reading;
    for (std::string_view line : Split(text, '\n')) {
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (line.size() > LongestLine) reading.error = Error::LineTooLong;
        int number = TakeLineNumber(line);
        if (line.empty()) continue;
        if (number < 0) {
            number =
                reading.lines.empty() ? NumberStep : reading.lines.rbegin()->first + NumberStep;
        }
        if (number == 0 || number > LargestLineNumber) reading.error = Error::LineNumber;
        if (reading.error != Error::None) return reading;
        reading.lines.insert_or_assign(number, std::string(line));
    }
    return reading;
}

} // namespace qnsim
