#include "Snapshot.h"

namespace qncomm::testing {

using qncomm::Terminal;
using qncomm::terminal::Style;
using qncomm::terminal::StyleRun;
using qncomm::terminal::TerminalLine;

Terminal::Options Sized(std::int16_t rows, std::int16_t columns, std::size_t scrollbackLines) {
    Terminal::Options options;
    options.rows = rows;
    options.columns = columns;
    options.scrollbackLines = scrollbackLines;
    return options;
}

Snapshot TakeSnapshot(const Terminal& terminal) {
    Snapshot snapshot;
    for (std::int16_t row = 1; row <= terminal.Rows(); ++row)
        snapshot.rows.push_back(terminal.Row(row));
    for (auto line = terminal.ScrollbackBegin(); line < terminal.ScrollbackEnd(); ++line)
        snapshot.scrollback.push_back(terminal.ScrollbackLine(line));
    snapshot.cursorRow = terminal.CursorRow();
    snapshot.cursorColumn = terminal.CursorColumn();
    snapshot.cursorVisible = terminal.CursorVisible();
    return snapshot;
}

std::string Rows(const Terminal& terminal) {
    std::string rows;
    for (std::int16_t row = 1; row <= terminal.Rows(); ++row) {
        std::string text = terminal.Row(row).text;
        text.erase(text.find_last_not_of(' ') + 1);
        rows += text + '|';
    }
    rows.erase(rows.find_last_not_of('|') + 1);
    return rows;
}

Style StyleAt(const Terminal& terminal, std::int16_t row, std::size_t column) {
    const TerminalLine line = terminal.Row(row);
    if (column > line.text.size()) return line.fill;
    std::size_t end = 0;
    for (const StyleRun& run : line.runs) {
        end += run.length;
        if (column <= end) return run.style;
    }
    return {};
}

namespace {

std::string FlawOf(const TerminalLine& line, std::size_t columns) {
    if (line.text.size() > columns) return "a row is longer than the screen is wide";
    std::size_t length = 0;
    for (const StyleRun& run : line.runs) {
        if (run.length == 0) return "an empty run";
        length += run.length;
    }
    if (!line.runs.empty() && length != line.text.size()) return "runs do not cover the row";
    for (const char character : line.text) {
        const auto code = static_cast<unsigned char>(character);
        if (code < 0x20 || code == 0x7F) return "a control character in a cell";
    }
    return {};
}

} // namespace

std::string Flaw(Terminal& terminal) {
    if (terminal.CursorRow() < 1 || terminal.CursorRow() > terminal.Rows()) return "cursor row";
    if (terminal.CursorColumn() < 1 || terminal.CursorColumn() > terminal.Columns())
        return "cursor column";
    const auto rows = static_cast<std::size_t>(terminal.Rows());
    const auto columns = static_cast<std::size_t>(terminal.Columns());
    const std::size_t textSize = terminal.ScreenText().size();
    if (textSize != 0 && textSize != rows * columns + (rows - 1) * 2) return "size of the text";
    for (std::int16_t row = 1; row <= terminal.Rows(); ++row)
        if (std::string flaw = FlawOf(terminal.Row(row), columns); !flaw.empty()) return flaw;
    const auto damage = terminal.TakeDamage();
    if (damage.scrolled > rows || damage.rows.size() > rows) return "more damage than rows";
    if (terminal.HasDamage()) return "damage after it was taken";
    for (auto line = terminal.ScrollbackBegin(); line < terminal.ScrollbackEnd(); ++line) {
        std::string flaw =
            FlawOf(terminal.ScrollbackLine(line), static_cast<std::size_t>(Terminal::MostColumns));
        if (!flaw.empty()) return "scroll-back: " + flaw;
    }
    return {};
}

} // namespace qncomm::testing
