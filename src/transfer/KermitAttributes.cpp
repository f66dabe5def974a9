#include "KermitAttributes.h"

#include "KermitFrame.h"

#include <array>
#include <charconv>
#include <chrono>

namespace qncomm::transfer {

namespace {

constexpr char Type = '"';        // "A" text, "B8" binary
constexpr char Date = '#';        // yyyymmdd hh:mm:ss
constexpr char Protection = ',';  // permission bits, octal
constexpr char Disposition = '+'; // "R": goes on where an earlier try ended
constexpr char Length = '1';      // bytes

void Put(std::string& out, std::size_t room, char tag, std::string_view value) {
    if (out.size() + 2 + value.size() > room || value.size() > 94) return;
    out.append({tag, kermit::ToChar(static_cast<unsigned>(value.size()))});
    out.append(value);
}

// `value` with zeros before it, behind `out`.
void PutDigits(std::string& out, std::int64_t value, std::size_t width) {
    std::string text = std::to_string(value);
    if (text.size() < width) text.insert(0, width - text.size(), '0');
    out += text;
}

std::string DateText(std::int64_t seconds) {
    using namespace std::chrono;
    const sys_seconds moment{std::chrono::seconds(seconds)};
    const auto day = floor<days>(moment);
    const year_month_day date{day};
    const hh_mm_ss time{moment - day};
    std::string text;
    PutDigits(text, static_cast<int>(date.year()), 4);
    PutDigits(text, static_cast<unsigned>(date.month()), 2);
    PutDigits(text, static_cast<unsigned>(date.day()), 2);
    text.push_back(' ');
    PutDigits(text, time.hours().count(), 2);
    text.push_back(':');
    PutDigits(text, time.minutes().count(), 2);
    text.push_back(':');
    PutDigits(text, time.seconds().count(), 2);
    return text;
}

std::optional<std::uint64_t> Number(std::string_view text, int base) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::optional<std::int64_t> DateValue(std::string_view text) {
    using namespace std::chrono;
    if (text.size() < 8) return std::nullopt;
    const auto part = [&](std::size_t at, std::size_t length) {
        return static_cast<int>(
            Number(at < text.size() ? text.substr(at, length) : "0", 10).value_or(0));
    };
    const year_month_day date{year(part(0, 4)), month(static_cast<unsigned>(part(4, 2))),
                              day(static_cast<unsigned>(part(6, 2)))};
    if (!date.ok()) return std::nullopt;
    const auto moment = sys_days(date) + hours(part(9, 2)) + minutes(part(12, 2))
                        + std::chrono::seconds(part(15, 2));
    return moment.time_since_epoch() / std::chrono::seconds(1);
}

} // namespace

std::string WriteKermitAttributes(const FileInfo& file, std::size_t room) {
    std::string out;
    if (file.size) Put(out, room, Length, std::to_string(*file.size));
    if (file.resume) Put(out, room, Disposition, "R");
    Put(out, room, Type, file.text ? "AMJ" : "B8");
    if (file.modified && *file.modified > 0) Put(out, room, Date, DateText(*file.modified));
    if (file.mode) {
        std::array<char, 12> digits{};
        const auto end =
            std::to_chars(digits.data(), digits.data() + digits.size(), *file.mode & 0777U, 8).ptr;
        Put(out, room, Protection, {digits.data(), static_cast<std::size_t>(end - digits.data())});
    }
    return out;
}

void ReadKermitAttributes(std::string_view data, FileInfo& file) {
    while (data.size() >= 2) {
        const char tag = data[0];
        const std::size_t length = kermit::FromChar(data[1]);
        data.remove_prefix(2);
        if (length > data.size()) return;
        const std::string_view value = data.substr(0, length);
        data.remove_prefix(length);
        if (tag == Length) {
            if (const auto size = Number(value, 10)) file.size = size;
        } else if (tag == Type) {
            file.text = !value.empty() && value[0] == 'A';
        } else if (tag == Date) {
            file.modified = DateValue(value);
        } else if (tag == Protection) {
            if (const auto mode = Number(value, 8))
                file.mode = static_cast<std::uint32_t>(*mode & 07777U);
        } else if (tag == Disposition) {
            file.resume = value == "R";
        }
    }
}

std::string WriteKermitResume(std::uint64_t offset) {
    std::string out;
    Put(out, 94, Length, std::to_string(offset));
    return out;
}

std::optional<std::uint64_t> ReadKermitResume(std::string_view data) {
    if (data.size() < 3 || data[0] != Length) return std::nullopt;
    return Number(data.substr(2, kermit::FromChar(data[1])), 10);
}

} // namespace qncomm::transfer
