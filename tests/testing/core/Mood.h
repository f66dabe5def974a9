#pragma once

#include <cstdlib>
#include <string>

namespace qncomm::testing {

/// The address of a virtual printer with the options that the environment variable QN_MOOD holds,
/// such as "noise=1&answer=40": a whole test program runs once more on a printer in that mood.
/// Options that the test itself gives come later and win.
inline std::string InMood(std::string address) {
    const char* const mood = std::getenv("QN_MOOD");
    if (mood == nullptr || *mood == '\0' || !address.starts_with("sim:")) return address;
    const auto question = address.find('?');
    if (question == std::string::npos) return address + "?" + mood;
    return address.insert(question + 1, std::string(mood) + "&");
}

} // namespace qncomm::testing
