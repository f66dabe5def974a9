#include "simulator/Options.h"

#include "Model.h"
#include "Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace qnsim {
namespace {

template <typename Number>
bool ReadNumber(std::string_view text, Number& number) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() && result.ptr == text.data() + text.size() && !text.empty();
}

template <typename Number>
bool ReadInRange(std::string_view text, Number low, Number high, Number& number) {
    Number value{};
    if (!ReadNumber(text, value) || value < low || value > high) return false;
    number = value;
    return true;
}

bool ReadSwitch(std::string_view text, bool& flag) {
    const std::string word = Lower(text);
    const bool yes = word.empty() || word == "1" || word == "on" || word == "yes" || word == "true";
    const bool no = word == "0" || word == "off" || word == "no" || word == "false";
    if (yes || no) flag = yes;
    return yes || no;
}

/// Takes ",seed=N" off the end of a fault's value.
bool TakeSeed(std::string_view& value, std::uint64_t& seed) {
    const auto at = value.find(",seed=");
    if (at == std::string_view::npos) return true;
    const bool good = ReadNumber(value.substr(at + 6), seed);
    value = value.substr(0, at);
    return good;
}

bool ReadRate(std::string_view value, FaultRate& fault) {
    return TakeSeed(value, fault.seed) && ReadInRange(value, 0.0, 1.0, fault.rate);
}

bool SetBaud(Options& options, std::string_view value) {
    constexpr std::array rates{300, 600, 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200};
    int baud = 0;
    if (!ReadNumber(value, baud) || std::find(rates.begin(), rates.end(), baud) == rates.end())
        return false;
    options.baud = baud;
    return true;
}

bool SetFormat(Options& options, std::string_view value) {
    const auto items = Split(value, ',');
    if (items.size() != 3 || items[0].size() != 1) return false;
    const char parity = Lower(items[0]).front();
    if (std::string_view("neoms").find(parity) == std::string_view::npos) return false;
    if (!ReadInRange(items[1], 7, 8, options.dataBits)
        || !ReadInRange(items[2], 1, 2, options.stopBits)) {
        return false;
    }
    options.parity = parity;
    return true;
}

bool SetModel(Options& options, std::string_view value) {
    if (FindModel(value) == nullptr) return false;
    options.model = value;
    return true;
}

bool SetStall(Options& options, std::string_view value) {
    if (!TakeSeed(value, options.faults.stall.seed)) return false;
    const auto colon = value.find(':');
    const bool timed = colon != std::string_view::npos;
    return ReadInRange(value.substr(0, colon), 0.0, 1.0, options.faults.stall.rate)
           && (!timed
               || ReadInRange(value.substr(colon + 1), 1, 3'600'000, options.faults.stallMs));
}

bool SetCut(Options& options, std::string_view value) {
    std::size_t bytes = 0;
    if (!ReadNumber(value, bytes)) return false;
    options.faults.cutAfter = bytes;
    return true;
}

bool SetDsr(Options& options, std::string_view value) {
    bool held = true;
    if (!ReadSwitch(value, held)) return false;
    options.faults.dsrDropped = !held;
    return true;
}

bool SetText(std::string& text, std::string_view value) {
    text = value;
    return !value.empty();
}

struct OptionRow {
    std::string_view name;
    bool (*set)(Options&, std::string_view);
    std::string_view wanted; // completes "NAME needs …"
};

using Sv = std::string_view;
constexpr std::array<OptionRow, 18> OptionRows{{
    {"model", SetModel, "a model code: R7A R7B R7C R7D R7E R7F R7EZV R7FZV R7G R7H"},
    {"baud", SetBaud, "a baud rate from 300 to 115200"},
    {"format", SetFormat, "parity, data bits and stop bits, such as n,8,2"},
    {"uart", [](Options& o, Sv v) { return ReadInRange(v, 1, 3, o.uart); }, "1, 2 or 3"},
    {"boot-ms", [](Options& o, Sv v) { return ReadInRange(v, 0, 3'600'000, o.bootMs); },
     "milliseconds, 0 to 3600000"},
    {"paced", [](Options& o, Sv v) { return ReadSwitch(v, o.paced); }, "on or off"},
    {"version", [](Options& o, Sv v) { return SetText(o.version, v); }, "a firmware text"},
    {"capacity",
     [](Options& o, Sv v) {
         return ReadInRange(v, std::uint64_t{1}, std::uint64_t{2'000'000'000}, o.capacity);
     },
     "bytes, 1 to 2000000000"},
    {"state", [](Options& o, Sv v) { return SetText(o.stateDir, v); }, "a folder"},
    {"labels", [](Options& o, Sv v) { return SetText(o.labelsDir, v); }, "a folder"},
    {"lost", [](Options& o, Sv v) { return ReadRate(v, o.faults.lost); }, "a rate from 0 to 1"},
    {"doubled", [](Options& o, Sv v) { return ReadRate(v, o.faults.doubled); },
     "a rate from 0 to 1"},
    {"flipped", [](Options& o, Sv v) { return ReadRate(v, o.faults.flipped); },
     "a rate from 0 to 1"},
    {"stall", SetStall, "a rate from 0 to 1 and milliseconds, such as 0.001:500"},
    {"no-echo", [](Options& o, Sv v) { return ReadSwitch(v, o.faults.noEcho); }, "on or off"},
    {"error-on",
     [](Options& o, Sv v) { return ReadInRange(v, 0, 1'000'000, o.faults.errorOnCommand); },
     "the number of a command line, from 1"},
    {"dsr", SetDsr, "on or off"},
    {"cut", SetCut, "a number of bytes"},
}};

std::string OptionNames() {
    std::string names;
    for (const OptionRow& row : OptionRows)
        names += (names.empty() ? "" : ", ") + std::string(row.name);
    return names;
}

} // namespace

std::string ApplyOption(Options& options, std::string_view name, std::string_view value) {
    const auto* row = std::find_if(OptionRows.begin(), OptionRows.end(),
                                   [name](const OptionRow& entry) { return entry.name == name; });
    if (row == OptionRows.end()) {
        return "the virtual printer has no option \"" + std::string(name) + "\" (it has "
               + OptionNames() + ")";
    }
    if (row->set(options, value)) return {};
    return std::string(name) + " needs " + std::string(row->wanted) + ", not \""
           + std::string(value) + "\"";
}

std::string CheckOptions(const Options& options) {
    const Model* model = FindModel(options.model);
    if (model == nullptr) return "there is no model \"" + options.model + "\"";
    if (options.uart <= model->uarts) return {};
    return "the " + options.model + " has no UART" + std::to_string(options.uart);
}

ParseResult ParseAddress(std::string_view afterSim) {
    const auto question = afterSim.find('?');
    Options options;
    std::string error = ApplyOption(options, "model", afterSim.substr(0, question));
    if (question != std::string_view::npos) {
        for (const std::string_view piece : Split(afterSim.substr(question + 1), '&')) {
            if (!error.empty()) break;
            if (piece.empty()) continue;
            const auto equals = piece.find('=');
            const bool named = equals != std::string_view::npos;
            error = ApplyOption(options, piece.substr(0, equals),
                                named ? piece.substr(equals + 1) : std::string_view());
        }
    }
    if (error.empty()) error = CheckOptions(options);
    if (!error.empty()) return {std::nullopt, std::move(error)};
    return {std::move(options), {}};
}

} // namespace qnsim
