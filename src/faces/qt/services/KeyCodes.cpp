#include "qt/KeyCodes.h"

#include <QKeyEvent>

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

/// Keys first to last of the toolkit, whose codes rise with them.
struct KeyRange {
    int first;
    int last;
    std::int16_t code;
};

constexpr std::array KeyRanges{
    KeyRange{Qt::Key_Left, Qt::Key_Down, 37},
    KeyRange{Qt::Key_Insert, Qt::Key_Delete, 45},
    KeyRange{Qt::Key_A, Qt::Key_Z, 65},
    KeyRange{Qt::Key_Meta, Qt::Key_Meta, 91},
    KeyRange{Qt::Key_Super_L, Qt::Key_Super_R, 91},
    KeyRange{Qt::Key_Menu, Qt::Key_Menu, 93},
    KeyRange{Qt::Key_F1, Qt::Key_F8, 112},
};

constexpr std::int16_t KeypadZero = 96;
constexpr std::int16_t CodeOfF1 = 112;
constexpr std::int16_t CodeOfF8 = 119;

constexpr std::int16_t ShiftBit = 1;
constexpr std::int16_t CtrlBit = 2;
constexpr std::int16_t AltBit = 4;

} // namespace

std::int16_t KeyCodeOf(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    if (key == Qt::Key_0 && modifiers.testFlag(Qt::KeypadModifier)) return KeypadZero;
    const auto range = std::ranges::find_if(
        KeyRanges, [&](const KeyRange& each) { return key >= each.first && key <= each.last; });
    if (range == KeyRanges.end()) return 0;
    return static_cast<std::int16_t>(range->code + (key - range->first));
}

std::int16_t ShiftStateOf(Qt::KeyboardModifiers modifiers) {
    int state = 0;
    if (modifiers.testFlag(Qt::ShiftModifier)) state |= ShiftBit;
    if (modifiers.testFlag(Qt::ControlModifier)) state |= CtrlBit;
    if (modifiers.testFlag(Qt::AltModifier)) state |= AltBit;
    return static_cast<std::int16_t>(state);
}

KeyStroke KeyStrokeOf(const QKeyEvent& event) {
    return {KeyCodeOf(static_cast<Qt::Key>(event.key()), event.modifiers()),
            ShiftStateOf(event.modifiers())};
}

std::int32_t FunctionKeyOf(const KeyStroke& stroke) {
    const bool chord = stroke.shift == (ShiftBit | CtrlBit);
    if (!chord || stroke.code < CodeOfF1 || stroke.code > CodeOfF8) return 0;
    return stroke.code - CodeOfF1 + 1;
}

} // namespace qncomm
