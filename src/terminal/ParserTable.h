#pragma once

#include <array>
#include <cstdint>

namespace qncomm::terminal {

enum class ParserState : std::uint8_t {
    Ground,
    Escape,
    EscapeIntermediate,
    ControlEntry, ///< right behind ESC [
    ControlParameters,
    ControlIntermediate,
    ControlIgnored, ///< malformed: swallowed to its final byte
    OperatingString,
    OtherString,
    Count
};

enum class ParserAction : std::uint8_t {
    Ignore,
    Print,
    Execute,
    StartSequence,
    StartString,
    StringByte,
    Mark,
    Collect,
    Parameter,
    DispatchEscape,
    DispatchControl,
};

/// What a byte does in a state, and the state after it.
struct Transition {
    ParserAction action = ParserAction::Ignore;
    ParserState next = ParserState::Ground;
};

using ParserTable =
    std::array<std::array<Transition, 256>, static_cast<std::size_t>(ParserState::Count)>;

/// One row of the rules from which the table is made; a later row wins.
struct ParserRule {
    ParserState state;
    std::uint8_t first;
    std::uint8_t last;
    Transition transition;
};

namespace parser_rules {

using enum ParserState;
using enum ParserAction;

/// What holds in every state of a sequence and in plain text: controls act at once, 8-bit
/// characters are text.
constexpr void AddCommon(ParserTable& table, ParserState state) {
    const bool inString = state == OperatingString || state == OtherString;
    auto& row = table[static_cast<std::size_t>(state)];
    for (std::size_t byte = 0; byte < row.size(); ++byte) {
        if (inString)
            row[byte] = {StringByte, state};
        else if (byte < 0x20)
            row[byte] = {Execute, state};
        else if (byte >= 0x80)
            row[byte] = {Print, Ground};
        else
            row[byte] = {Ignore, state};
    }
    row[0x18] = {Execute, Ground};
    row[0x1A] = {Execute, Ground};
    row[0x1B] = {StartSequence, Escape};
}

inline constexpr std::array Rules{
    ParserRule{Ground, 0x20, 0x7E, {Print, Ground}},

    ParserRule{Escape, 0x20, 0x2F, {Collect, EscapeIntermediate}},
    ParserRule{Escape, 0x30, 0x7E, {DispatchEscape, Ground}},
    ParserRule{Escape, '[', '[', {StartSequence, ControlEntry}},
    ParserRule{Escape, ']', ']', {StartString, OperatingString}},
    ParserRule{Escape, 'P', 'P', {StartString, OtherString}},
    ParserRule{Escape, 'X', 'X', {StartString, OtherString}},
    ParserRule{Escape, '^', '_', {StartString, OtherString}},

    ParserRule{EscapeIntermediate, 0x20, 0x2F, {Collect, EscapeIntermediate}},
    ParserRule{EscapeIntermediate, 0x30, 0x7E, {DispatchEscape, Ground}},

    ParserRule{ControlEntry, 0x20, 0x2F, {Collect, ControlIntermediate}},
    ParserRule{ControlEntry, 0x30, 0x3B, {Parameter, ControlParameters}},
    ParserRule{ControlEntry, 0x3C, 0x3F, {Mark, ControlParameters}},
    ParserRule{ControlEntry, 0x40, 0x7E, {DispatchControl, Ground}},

    ParserRule{ControlParameters, 0x20, 0x2F, {Collect, ControlIntermediate}},
    ParserRule{ControlParameters, 0x30, 0x3B, {Parameter, ControlParameters}},
    ParserRule{ControlParameters, 0x3C, 0x3F, {Ignore, ControlIgnored}},
    ParserRule{ControlParameters, 0x40, 0x7E, {DispatchControl, Ground}},

    ParserRule{ControlIntermediate, 0x20, 0x2F, {Collect, ControlIntermediate}},
    ParserRule{ControlIntermediate, 0x30, 0x3F, {Ignore, ControlIgnored}},
    ParserRule{ControlIntermediate, 0x40, 0x7E, {DispatchControl, Ground}},

    ParserRule{ControlIgnored, 0x40, 0x7E, {Ignore, Ground}},

    ParserRule{OperatingString, 0x07, 0x07, {Ignore, Ground}},
};

constexpr ParserTable Make() {
    ParserTable table{};
    for (std::size_t state = 0; state < table.size(); ++state)
        AddCommon(table, static_cast<ParserState>(state));
    for (const ParserRule& rule : Rules)
        for (std::size_t byte = rule.first; byte <= rule.last; ++byte)
            table[static_cast<std::size_t>(rule.state)][byte] = rule.transition;
    return table;
}

} // namespace parser_rules

inline constexpr ParserTable Transitions = parser_rules::Make();

} // namespace qncomm::terminal
