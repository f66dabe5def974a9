// The terminal on bytes of any kind. The first bytes of an input choose the screen's size and where
// the rest is cut; whole and cut, the terminals must be alike and hang together.

#include "terminal/Terminal.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

using qncomm::Terminal;

void Require(bool holds) {
    if (!holds) std::abort();
}

void CheckCursor(const Terminal& terminal) {
    Require(terminal.CursorRow() >= 1 && terminal.CursorRow() <= terminal.Rows());
    Require(terminal.CursorColumn() >= 1 && terminal.CursorColumn() <= terminal.Columns());
}

void CheckText(const Terminal& terminal) {
    const auto rows = static_cast<std::size_t>(terminal.Rows());
    const auto columns = static_cast<std::size_t>(terminal.Columns());
    const std::size_t size = terminal.ScreenText().size();
    Require(size == 0 || size == rows * columns + (rows - 1) * 2);
}

void CheckAlike(const Terminal& left, const Terminal& right) {
    Require(left.CursorRow() == right.CursorRow());
    Require(left.CursorColumn() == right.CursorColumn());
    for (std::int16_t row = 1; row <= left.Rows(); ++row)
        Require(left.Row(row) == right.Row(row));
    Require(left.ScrollbackBegin() == right.ScrollbackBegin());
    Require(left.ScrollbackEnd() == right.ScrollbackEnd());
    for (auto line = left.ScrollbackBegin(); line < left.ScrollbackEnd(); ++line)
        Require(left.ScrollbackLine(line) == right.ScrollbackLine(line));
}

void CheckDamage(Terminal& terminal) {
    const auto damage = terminal.TakeDamage();
    const auto rows = static_cast<std::size_t>(terminal.Rows());
    Require(damage.scrolled <= rows && damage.rows.size() <= rows);
    Require(!terminal.HasDamage());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 4) return 0;
    Terminal::Options options;
    options.rows = static_cast<std::int16_t>(1 + data[0] % 40);
    options.columns = static_cast<std::int16_t>(1 + data[1] % 90);
    options.scrollbackLines = 1U + data[2] % 30;
    const std::size_t pieceLength = 1U + data[3] % 16;
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 4, size - 4);

    Terminal whole(options);
    whole.Write(bytes);
    Terminal pieces(options);
    for (std::size_t at = 0; at < bytes.size(); at += pieceLength)
        pieces.Write(bytes.substr(at, pieceLength));
    CheckCursor(whole);
    CheckText(whole);
    CheckAlike(whole, pieces);
    CheckDamage(whole);

    Require(whole.Resize(static_cast<std::int16_t>(1 + data[3] % 40),
                         static_cast<std::int16_t>(1 + data[2] % 90)));
    whole.Write(bytes);
    CheckCursor(whole);
    CheckText(whole);
    whole.Clear();
    Require(whole.ScreenText().empty());
    return 0;
}
