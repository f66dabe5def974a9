// The terminal as cells.

#include "Control.h"
#include "common/RuntimeErrors.h"
#include "common/Windows1252.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

using namespace qncomm;
using namespace qncomm::bindings;

namespace {

/// The terminal's own colour; a host without system colours has black on white.
std::uint32_t OwnColour(std::int32_t colour, std::uint32_t otherwise) {
    return colour < 0 ? otherwise : static_cast<std::uint32_t>(colour);
}

/// Cells of a style with a terminal's own colours.
class CellMaker {
  public:
    explicit CellMaker(const terminal::TerminalAppearance& appearance)
        : mFore(OwnColour(appearance.foreColor, 0x000000)),
          mBack(OwnColour(appearance.backColor, 0xFFFFFF)) {}

    qn_cell Of(char byte, const terminal::Style& style) const {
        qn_cell cell{CharacterOf(byte), style.Foreground().Value(mFore),
                     style.Background().Value(mBack), 0};
        for (unsigned bit = QN_BOLD; bit <= QN_OVERLINE; bit <<= 1U)
            if (style.Has(static_cast<terminal::Attribute>(bit))) cell.style |= bit;
        return cell;
    }

  private:
    std::uint32_t mFore;
    std::uint32_t mBack;
};

void NeedsPlace(const void* place) {
    if (place == nullptr) RaiseRuntimeError(RtInvalidCall);
}

} // namespace

int qn_on_screen(qn_control* control, qn_screen_handler handler, void* user) {
    return Guarded(control, [=](qn_control& mine) { mine.screen.Set(handler, user); });
}

int qn_screen_state(qn_control* control, qn_screen* screen) {
    return Guarded(control, [=](qn_control& mine) {
        NeedsPlace(screen);
        const Terminal& grid = mine.assembly->Grid();
        *screen = {grid.Rows(), grid.Columns(), grid.CursorRow(), grid.CursorColumn(),
                   grid.CursorVisible() ? 1 : 0};
    });
}

int qn_screen_row(qn_control* control, int row, qn_cell* cells, std::size_t count) {
    return Guarded(control, [=](qn_control& mine) {
        const Terminal& grid = mine.assembly->Grid();
        if (count > 0) NeedsPlace(cells);
        if (row < 1 || row > grid.Rows()) RaiseRuntimeError(RtSubscript);
        const terminal::TerminalLine line = grid.Row(static_cast<std::int16_t>(row));
        const CellMaker maker(grid.Appearance());
        const auto width = std::min(count, static_cast<std::size_t>(grid.Columns()));
        std::fill_n(cells, width, maker.Of(' ', line.fill));
        std::size_t at = 0;
        const auto put = [&](std::size_t length, const terminal::Style& style) {
            for (const std::size_t end = std::min(at + length, line.text.size()); at < end; ++at)
                if (at < width) cells[at] = maker.Of(line.text[at], style);
        };
        for (const terminal::StyleRun& run : line.runs)
            put(run.length, run.style);
        put(line.text.size() - at, {});
    });
}

int qn_screen_damage(qn_control* control, qn_damage* damage) {
    return Guarded(control, [=](qn_control& mine) {
        NeedsPlace(damage);
        TerminalChanges changes = mine.assembly->Changes();
        mine.damage = changes.TakeDamage();
        *damage = {mine.damage.scrolled, mine.damage.rows.data(), mine.damage.rows.size(),
                   changes.TakeBell() ? 1 : 0};
    });
}

int qn_type_bytes(qn_control* control, const char* bytes, std::size_t length, std::size_t* taken) {
    return Guarded(control, [=](qn_control& mine) {
        if (length > 0) NeedsPlace(bytes);
        const std::size_t count = mine.assembly->Viewport().Type(std::string_view(bytes, length));
        if (taken != nullptr) *taken = count;
    });
}
