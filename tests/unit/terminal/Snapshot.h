#pragma once

#include "terminal/Terminal.h"

#include <string>
#include <string_view>
#include <vector>

namespace qncomm::testing {

/// A terminal's options for a screen of that size.
qncomm::Terminal::Options Sized(std::int16_t rows, std::int16_t columns,
                                std::size_t scrollbackLines = 10'000);

/// All that can be seen of a terminal.
struct Snapshot {
    std::vector<qncomm::terminal::TerminalLine> rows;
    std::vector<qncomm::terminal::TerminalLine> scrollback;
    std::int16_t cursorRow = 0;
    std::int16_t cursorColumn = 0;
    bool cursorVisible = true;

    bool operator==(const Snapshot&) const = default;
};
Snapshot TakeSnapshot(const qncomm::Terminal& terminal);

/// The rows without trailing blanks, with "|" between them and none behind the last written one.
std::string Rows(const qncomm::Terminal& terminal);

/// The style of a cell, counted from 1, as a painter sees it.
qncomm::terminal::Style StyleAt(const qncomm::Terminal& terminal, std::int16_t row,
                                std::size_t column);

/// What is wrong with what can be seen of the terminal; "" when it hangs together.
std::string Flaw(qncomm::Terminal& terminal);

} // namespace qncomm::testing
