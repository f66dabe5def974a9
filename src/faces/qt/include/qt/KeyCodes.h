#pragma once

#include <Qt>

#include <cstdint>

class QKeyEvent;

namespace qncomm {

/// A key as the system counts it.
struct KeyStroke {
    std::int16_t code = 0;  ///< 0 for a key that the system has no code for
    std::int16_t shift = 0; ///< 1 Shift, 2 Ctrl, 4 Alt, added up
    /// Equal when code and held keys are.
    bool operator==(const KeyStroke&) const = default;
};

/// The system's code of a key: 37 to 40 arrows, 45 Insert, 46 Delete, 65 to 90 letters, 91 to 93
/// the system keys and the menu key, 96 the keypad's zero, 112 to 119 F1 to F8. 0 for any other.
std::int16_t KeyCodeOf(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

/// The held keys by the system's bits; keys that have none are left out.
std::int16_t ShiftStateOf(Qt::KeyboardModifiers modifiers);

/// The key of a press or release, with the keys that are held.
KeyStroke KeyStrokeOf(const QKeyEvent& event);

/// Which function key (1 to 8) the stroke presses on the toolbar: Ctrl+Shift+F1 to F8. 0 for none.
std::int32_t FunctionKeyOf(const KeyStroke& stroke);

} // namespace qncomm
