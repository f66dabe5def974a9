#pragma once

// What a virtual printer is made of, and the text form of it that an address or a command line
// carries.

#include "simulator/LineFormat.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qnsim {

using Micros = std::int64_t; ///< the caller's monotonic clock, in microseconds

/// Something that happens to a byte with a probability; the same seed gives the same bytes.
struct FaultRate {
    double rate = 0.0;      ///< 0 never, 1 every byte
    std::uint64_t seed = 1; ///< of the fault's own random numbers
};

/// Faults that can be switched on. The line's faults work in both directions.
struct Faults {
    FaultRate lost;          ///< the byte does not arrive
    FaultRate doubled;       ///< the byte arrives twice
    FaultRate flipped;       ///< one of its bits is turned over
    FaultRate stall;         ///< before this byte the printer's output pauses
    int stallMs = 1000;      ///< and for so long, in milliseconds
    bool noEcho = false;     ///< command lines are not echoed
    int errorOnCommand = 0;  ///< the n-th command line (1-based) fails with error 1099; 0 = none
    bool dsrDropped = false; ///< the printer never holds DSR
    std::optional<std::size_t> cutAfter; ///< the line is cut once so many bytes went to the host
};

/// How long command lines of one kind take.
struct AnswerTime {
    int ms = 0;          ///< from the end of the line to its first statement, in milliseconds
    std::string command; ///< what such a line begins with, without blanks, in capitals; empty = all
};

/// What real printers do and an obliging one does not. None of it damages a byte of a reply.
struct Moods {
    std::vector<AnswerTime> answers;     ///< the last one that fits a command line counts
    int lateErrorsMs = 0;                ///< a statement's error is said so many milliseconds later
    bool longSetup = false;              ///< many more items, those of the channels at the end
    std::optional<std::string> greeting; ///< the line that a start says in place of the usual ones
    FaultRate noise;        ///< a few bytes that nobody sent come between a reply and the next echo
    FaultRate powerLost;    ///< before this statement the power fails and returns
    int powerLostAfter = 0; ///< the same once, after so many statements; 0 = never
};

/// One virtual printer. The defaults are a printer that a host finds with its default search.
struct Options {
    std::string model = "R7G"; ///< one of the ten model codes
    // The setup, at the start, of the channel that the host is wired to:
    int baud = 9600;            ///< bits per second
    char parity = 'n';          ///< 'n', 'e', 'o', 'm' or 's'
    int dataBits = 8;           ///< 7 or 8
    int stopBits = 2;           ///< 1 or 2
    int uart = 1;               ///< the channel that the host is wired to, 1 to 3
    int bootMs = 3000;          ///< how long a restart takes, in milliseconds
    bool paced = false;         ///< bytes take their time on the line
    std::string version;        ///< firmware text; empty = the model's own
    std::uint64_t capacity = 0; ///< bytes of the work device; 0 = the model's own
    std::string stateDir;       ///< keep storage and setup in this folder; empty = in memory
    std::string labelsDir;      ///< write a PNG for each printed label here; empty = none
    Faults faults;              ///< none are switched on
    Moods moods;                ///< none either
};

/// What an address or a command line was read as.
struct ParseResult {
    std::optional<Options> options; ///< absent = refused
    std::string error;              ///< says what was wrong, for a person
};

/// Reads what follows "sim:" in an address: MODEL, or MODEL?name=value&name=value… with the names
/// of AllOptions.
ParseResult ParseAddress(std::string_view afterSim);

/// What an option wants.
enum class OptionKind {
    Value,  ///< a value, always
    Switch, ///< on or off, and on without a value
    Fault,  ///< a value that may end in ",seed=N", or on or off
};

/// An option of an address and of a command line, for those who list them.
struct OptionText {
    std::string_view name;   ///< in an address
    std::string_view flag;   ///< on a command line
    OptionKind kind;         ///< what it wants
    std::string_view wanted; ///< the value, for a person; completes "NAME needs …"
    std::string_view help;   ///< what it does, in a few words
};

/// Every option, in the order in which they are documented.
std::span<const OptionText> AllOptions();

/// Applies one option by its name (as in an address) to the options; returns an empty text or what
/// was wrong.
std::string ApplyOption(Options& options, std::string_view name, std::string_view value);

/// Whether the options fit together; an empty text or what does not.
std::string CheckOptions(const Options& options);

} // namespace qnsim
