#include "TypedKeys.h"

#include <QKeyEvent>

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

struct NamedKey {
    int key;
    KeyName name;
};

constexpr std::array NamedKeys{
    NamedKey{Qt::Key_Return, KeyName::Enter},
    NamedKey{Qt::Key_Enter, KeyName::Enter},
    NamedKey{Qt::Key_Backspace, KeyName::Backspace},
    NamedKey{Qt::Key_Tab, KeyName::Tab},
    NamedKey{Qt::Key_Backtab, KeyName::BackTab},
    NamedKey{Qt::Key_Escape, KeyName::Escape},
    NamedKey{Qt::Key_Delete, KeyName::Delete},
    NamedKey{Qt::Key_PageUp, KeyName::PageUp},
    NamedKey{Qt::Key_PageDown, KeyName::PageDown},
    NamedKey{Qt::Key_Home, KeyName::Home},
    NamedKey{Qt::Key_End, KeyName::End},
    NamedKey{Qt::Key_Pause, KeyName::Break},
    NamedKey{Qt::Key_Cancel, KeyName::Break}, // what some platforms make of it with Ctrl
};

KeyName NameOf(int key) {
    const auto found = std::ranges::find(NamedKeys, key, &NamedKey::key);
    return found == NamedKeys.end() ? KeyName::None : found->name;
}

/// The toolkit numbers the keys of ASCII by their characters.
char CapOf(int key) {
    return key >= Qt::Key_Space && key <= Qt::Key_AsciiTilde ? static_cast<char>(key) : '\0';
}

} // namespace

KeyPress KeyPressOf(const QKeyEvent& event) {
    const Qt::KeyboardModifiers held = event.modifiers();
    return {.name = NameOf(event.key()),
            .cap = CapOf(event.key()),
            .held = {.shift = held.testFlag(Qt::ShiftModifier),
                     .ctrl = held.testFlag(Qt::ControlModifier),
                     .alt = held.testFlag(Qt::AltModifier),
                     .meta = held.testFlag(Qt::MetaModifier)},
            .text = event.text().toStdU16String()};
}

} // namespace qncomm
