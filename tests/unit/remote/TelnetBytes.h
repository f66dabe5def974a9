#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace qncomm::testing {

/// A Telnet stream, written down by its numbers.
inline std::string Bytes(std::initializer_list<int> values) {
    std::string bytes;
    for (const int value : values)
        bytes += static_cast<char>(value);
    return bytes;
}

/// A command of a remote port between the marks of its beginning and end.
inline std::string Command(int number, std::string_view value) {
    return Bytes({255, 250, 44, number}) + std::string(value) + Bytes({255, 240});
}
inline std::string Command(int number, std::initializer_list<int> value) {
    return Command(number, Bytes(value));
}

constexpr int Will = 251;
constexpr int Wont = 252;
constexpr int Do = 253;
constexpr int Dont = 254;

inline std::string Option(int verb, int option) {
    return Bytes({255, verb, option});
}

} // namespace qncomm::testing
