#pragma once

#include "terminal/view/TerminalText.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm::testing {

/// A terminal and its text, as the rules of interaction read it.
struct TextRig {
    TextRig(std::int16_t rows, std::int16_t columns, std::size_t scrollbackLines = 1000)
        : grid({.rows = rows, .columns = columns, .scrollbackLines = scrollbackLines}) {}
    TextRig(const TextRig&) = delete;
    TextRig& operator=(const TextRig&) = delete;

    void Receive(std::string_view bytes) { grid.Write(bytes); }
    /// Lines "line N" for N from first on, each with CR LF.
    void ReceiveLines(int first, int count) {
        for (int number = first; number < first + count; ++number)
            grid.Write("line " + std::to_string(number) + "\r\n");
    }

    Terminal grid;
    TerminalText text{grid};
};

} // namespace qncomm::testing
