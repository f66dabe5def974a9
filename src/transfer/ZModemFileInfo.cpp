#include "ZModemFileInfo.h"

#include <charconv>

namespace qncomm::transfer {

namespace {

std::string Octal(std::uint64_t value) {
    std::string digits;
    do {
        digits.insert(digits.begin(), static_cast<char>('0' + (value & 7U)));
        value >>= 3U;
    } while (value != 0);
    return digits;
}

// The next blank-separated field as a number; empty when it is missing or not a number.
std::optional<std::uint64_t> TakeNumber(std::string_view& text, int base) {
    const auto start = text.find_first_not_of(' ');
    if (start == std::string_view::npos) return std::nullopt;
    text.remove_prefix(start);
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc{}) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return value;
}

} // namespace

std::string WriteZModemFileInfo(const FileInfo& file) {
    std::string text = file.name;
    text.push_back('\0');
    if (file.size) {
        const auto time = file.modified && *file.modified > 0 ? *file.modified : 0;
        const std::uint64_t mode = file.mode ? 0100000U | *file.mode : 0U;
        text += std::to_string(*file.size) + ' ' + Octal(static_cast<std::uint64_t>(time)) + ' '
                + Octal(mode) + " 0";
        if (file.filesLeft) {
            text += ' ' + std::to_string(*file.filesLeft) + ' ' + std::to_string(*file.size);
        }
    }
    text.push_back('\0');
    return text;
}

FileInfo ReadZModemFileInfo(std::string_view content) {
    FileInfo file;
    const auto nameEnd = content.find('\0');
    file.name = content.substr(0, nameEnd);
    if (nameEnd == std::string_view::npos) return file;
    std::string_view rest = content.substr(nameEnd + 1);
    rest = rest.substr(0, rest.find('\0'));
    file.size = TakeNumber(rest, 10);
    if (const auto time = TakeNumber(rest, 8); time && *time != 0) {
        file.modified = static_cast<std::int64_t>(*time);
    }
    if (const auto mode = TakeNumber(rest, 8); mode && *mode != 0) file.mode = *mode & 07777U;
    TakeNumber(rest, 8);
    if (const auto left = TakeNumber(rest, 10)) file.filesLeft = static_cast<std::uint32_t>(*left);
    return file;
}

} // namespace qncomm::transfer
