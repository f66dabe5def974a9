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

/// Lower bound 0: no wait at all.
bool ReadMillis(std::string_view value, int& ms) {
    return ReadInRange(value, 0, 3'600'000, ms);
}

bool AddAnswer(Options& options, std::string_view value) {
    const auto colon = value.find(':');
    AnswerTime answer;
    if (!ReadMillis(value.substr(0, colon), answer.ms)) return false;
    if (colon != std::string_view::npos) answer.command = Squeezed(value.substr(colon + 1));
    options.moods.answers.push_back(std::move(answer));
    return true;
}

bool SetGreeting(Options& options, std::string_view value) {
    options.moods.greeting = value;
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
    OptionText text;
    bool (*set)(Options&, std::string_view);
};

using Sv = std::string_view;
constexpr OptionKind Value = OptionKind::Value;
constexpr OptionKind Switch = OptionKind::Switch;
constexpr OptionKind Fault = OptionKind::Fault;
constexpr Sv Rate = "a rate from 0 to 1";
constexpr Sv OnOrOff = "on or off";
constexpr Sv Millis = "milliseconds, 0 to 3600000";

constexpr std::array OptionRows{
    OptionRow{{"model", "--model", Value,
               "a model code: R7A R7B R7C R7D R7E R7F R7EZV R7FZV R7G R7H",
               "the printer's model (default R7G)"},
              SetModel},
    OptionRow{{"baud", "--baud", Value, "a baud rate from 300 to 115200",
               "the printer's baud rate (default 9600)"},
              SetBaud},
    OptionRow{{"format", "--format", Value, "parity, data bits and stop bits, such as n,8,2",
               "the printer's frame format (default n,8,2)"},
              SetFormat},
    OptionRow{{"uart", "--uart", Value, "1, 2 or 3",
               "the printer's channel that the host is wired to (default 1)"},
              [](Options& o, Sv v) { return ReadInRange(v, 1, 3, o.uart); }},
    OptionRow{{"boot-ms", "--boot-ms", Value, Millis, "how long a restart takes (default 3000)"},
              [](Options& o, Sv v) { return ReadMillis(v, o.bootMs); }},
    OptionRow{{"paced", "--paced", Switch, OnOrOff,
               "bytes take their time on the line, which takes few at once"},
              [](Options& o, Sv v) { return ReadSwitch(v, o.paced); }},
    OptionRow{{"version", "--firmware", Value, "a firmware text",
               "what the printer says its firmware is"},
              [](Options& o, Sv v) { return SetText(o.version, v); }},
    OptionRow{
        {"capacity", "--capacity", Value, "bytes, 1 to 2000000000", "bytes of the work device"},
        [](Options& o, Sv v) {
            return ReadInRange(v, std::uint64_t{1}, std::uint64_t{2'000'000'000}, o.capacity);
        }},
    OptionRow{{"state", "--state", Value, "a folder", "keep storage and setup in this folder"},
              [](Options& o, Sv v) { return SetText(o.stateDir, v); }},
    OptionRow{{"labels", "--labels", Value, "a folder",
               "write a PNG for each printed label to this folder"},
              [](Options& o, Sv v) { return SetText(o.labelsDir, v); }},
    OptionRow{{"answer", "--answer", Value,
               "milliseconds, and after a colon how a command line begins, such as 700:FILES",
               "command lines take that time; may be given for several commands"},
              AddAnswer},
    OptionRow{{"late-errors", "--late-errors", Value, Millis,
               "errors of statements are said so much later"},
              [](Options& o, Sv v) { return ReadMillis(v, o.moods.lateErrorsMs); }},
    OptionRow{{"long-setup", "--long-setup", Switch, OnOrOff,
               "a setup of many unknown sections, the channels at its end"},
              [](Options& o, Sv v) { return ReadSwitch(v, o.moods.longSetup); }},
    OptionRow{{"greeting", "--greeting", Value, "a text or nothing",
               "all that the printer says when it has started"},
              SetGreeting},
    OptionRow{{"noise", "--noise", Fault, Rate, "noise comes between a reply and the next echo"},
              [](Options& o, Sv v) { return ReadRate(v, o.moods.noise); }},
    OptionRow{{"power-lost", "--power-lost", Fault, Rate, "power fails before a statement"},
              [](Options& o, Sv v) { return ReadRate(v, o.moods.powerLost); }},
    OptionRow{
        {"power-lost-after", "--power-lost-after", Value, "a number of statements",
         "power fails once, after so many statements"},
        [](Options& o, Sv v) { return ReadInRange(v, 0, 1'000'000'000, o.moods.powerLostAfter); }},
    OptionRow{{"lost", "--lost", Fault, Rate, "bytes are lost on the line"},
              [](Options& o, Sv v) { return ReadRate(v, o.faults.lost); }},
    OptionRow{{"doubled", "--doubled", Fault, Rate, "bytes arrive twice"},
              [](Options& o, Sv v) { return ReadRate(v, o.faults.doubled); }},
    OptionRow{{"flipped", "--flipped", Fault, Rate, "bits are turned over"},
              [](Options& o, Sv v) { return ReadRate(v, o.faults.flipped); }},
    OptionRow{{"stall", "--stall", Fault, "a rate from 0 to 1 and milliseconds, such as 0.001:500",
               "the printer's output pauses"},
              SetStall},
    OptionRow{{"no-echo", "--no-echo", Switch, OnOrOff, "command lines are not echoed"},
              [](Options& o, Sv v) { return ReadSwitch(v, o.faults.noEcho); }},
    OptionRow{
        {"error-on", "--error-on", Value, "the number of a command line, from 1",
         "that command line fails with error 1099"},
        [](Options& o, Sv v) { return ReadInRange(v, 0, 1'000'000, o.faults.errorOnCommand); }},
    OptionRow{{"dsr", "--dsr", Value, OnOrOff, "whether the printer holds DSR (default on)"},
              SetDsr},
    OptionRow{{"cut", "--cut", Value, "a number of bytes",
               "the line is cut after so many bytes to the host"},
              SetCut},
};

/// The texts alone, for AllOptions.
constexpr std::array<OptionText, OptionRows.size()> OptionTexts = [] {
    std::array<OptionText, OptionRows.size()> texts{};
    std::transform(OptionRows.begin(), OptionRows.end(), texts.begin(),
                   [](const OptionRow& row) { return row.text; });
    return texts;
}();

std::string OptionNames() {
    std::string names;
    for (const OptionRow& row : OptionRows)
        names += (names.empty() ? "" : ", ") + std::string(row.text.name);
    return names;
}

} // namespace

std::span<const OptionText> AllOptions() {
    return OptionTexts;
}

std::string ApplyOption(Options& options, std::string_view name, std::string_view value) {
    const auto* row =
        std::find_if(OptionRows.begin(), OptionRows.end(),
                     [name](const OptionRow& entry) { return entry.text.name == name; });
    if (row == OptionRows.end()) {
        return "the virtual printer has no option \"" + std::string(name) + "\" (it has "
               + OptionNames() + ")";
    }
    if (row->set(options, value)) return {};
    return std::string(name) + " needs " + std::string(row->text.wanted) + ", not \""
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
