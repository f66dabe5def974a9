#include "TypedKeys.h"

#include "qt/Charset.h"

#include <QKeyEvent>

#include <algorithm>
#include <array>
#include <string_view>

namespace qncomm {
namespace {

struct KeyBytes {
    int key;
    std::string_view bytes;
};

/// Keys that send the same whatever the platform thinks their text is.
constexpr std::array FixedKeys{
    KeyBytes{Qt::Key_Return, "\r"},    KeyBytes{Qt::Key_Enter, "\r"},
    KeyBytes{Qt::Key_Backspace, "\b"}, KeyBytes{Qt::Key_Tab, "\t"},
    KeyBytes{Qt::Key_Backtab, ""},     KeyBytes{Qt::Key_Escape, "\x1B"},
    KeyBytes{Qt::Key_Delete, ""},
};

constexpr int FirstControlKey = Qt::Key_At; // "@" with Ctrl is NUL, "A" is 01, "_" is 1F
constexpr int LastControlKey = Qt::Key_Underscore;

bool IsLetter(const QKeyEvent& event) {
    return event.key() >= Qt::Key_A && event.key() <= Qt::Key_Z;
}

bool IsControlStroke(const QKeyEvent& event) {
    const Qt::KeyboardModifiers held = event.modifiers();
    return held.testFlag(Qt::ControlModifier) && !held.testFlag(Qt::AltModifier);
}

} // namespace

std::string BytesOf(const QKeyEvent& event) {
    const auto fixed = std::ranges::find(FixedKeys, event.key(), &KeyBytes::key);
    if (fixed != FixedKeys.end()) return std::string(fixed->bytes);
    if (IsControlStroke(event)) {
        // With Shift too, a letter is for the program around.
        if (IsLetter(event) && event.modifiers().testFlag(Qt::ShiftModifier)) return {};
        if (event.key() == Qt::Key_Space) return std::string(1, '\0');
        if (event.key() >= FirstControlKey && event.key() <= LastControlKey)
            return std::string(1, static_cast<char>(event.key() - FirstControlKey));
        return {};
    }
    // Alt alone is for the program's menus; both together is how some keyboards write a character.
    if (event.modifiers().testFlag(Qt::AltModifier)
        && !event.modifiers().testFlag(Qt::ControlModifier))
        return {};
    const QString text = event.text();
    const bool control = !text.isEmpty() && text.front().category() == QChar::Other_Control;
    return control ? std::string() : ToLine(text);
}

} // namespace qncomm
