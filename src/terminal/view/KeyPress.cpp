#include "terminal/view/KeyPress.h"

#include "common/Windows1252.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace qncomm {
namespace {

struct KeyBytes {
    KeyName name;
    std::string_view bytes;
};

/// Keys that send the same whatever the platform thinks their text is.
constexpr std::array FixedKeys{
    KeyBytes{KeyName::Enter, "\r"},    KeyBytes{KeyName::Backspace, "\b"},
    KeyBytes{KeyName::Tab, "\t"},      KeyBytes{KeyName::BackTab, ""},
    KeyBytes{KeyName::Escape, "\x1B"}, KeyBytes{KeyName::Delete, ""},
    KeyBytes{KeyName::Break, ""},
};

/// "@" with Ctrl is NUL, "A" is 01, "_" is 1F.
constexpr char FirstControlKey = '@';
constexpr char LastControlKey = '_';

std::string ControlCharacter(const KeyPress& press) {
    // With Shift too, a letter is for the program around.
    if (press.held.shift && press.cap >= 'A' && press.cap <= 'Z') return {};
    if (press.cap == ' ') return std::string(1, '\0');
    if (press.cap >= FirstControlKey && press.cap <= LastControlKey)
        return std::string(1, static_cast<char>(press.cap - FirstControlKey));
    return {};
}

bool IsControl(char16_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

struct Chord {
    KeyName name;
    char cap;
    HeldKeys held;
    ViewCommand command;
};

constexpr HeldKeys Shift{.shift = true};
constexpr HeldKeys Ctrl{.ctrl = true};
constexpr HeldKeys CtrlShift{.shift = true, .ctrl = true};

constexpr std::array Chords{
    Chord{KeyName::None, 'F', Ctrl, ViewCommand::Search},
    Chord{KeyName::None, '+', Ctrl, ViewCommand::ZoomIn},
    Chord{KeyName::None, '+', CtrlShift, ViewCommand::ZoomIn},
    Chord{KeyName::None, '=', Ctrl, ViewCommand::ZoomIn}, // plus, on keyboards that shift it
    Chord{KeyName::None, '-', Ctrl, ViewCommand::ZoomOut},
    Chord{KeyName::None, '0', Ctrl, ViewCommand::ZoomReset},
    Chord{KeyName::None, 'C', CtrlShift, ViewCommand::Copy},
    Chord{KeyName::None, 'V', CtrlShift, ViewCommand::Paste},
    Chord{KeyName::None, 'A', CtrlShift, ViewCommand::SelectAll},
    Chord{KeyName::Break, 0, Ctrl, ViewCommand::Break},
    Chord{KeyName::None, 'B', CtrlShift, ViewCommand::Break}, // for keyboards without Break
    Chord{KeyName::PageUp, 0, Shift, ViewCommand::PageUp},
    Chord{KeyName::PageDown, 0, Shift, ViewCommand::PageDown},
    Chord{KeyName::Home, 0, Shift, ViewCommand::ToStart},
    Chord{KeyName::End, 0, Shift, ViewCommand::ToEnd},
    Chord{KeyName::Tab, 0, Ctrl, ViewCommand::NextControl},
    Chord{KeyName::BackTab, 0, CtrlShift, ViewCommand::PreviousControl},
};

} // namespace

std::string BytesOf(const KeyPress& press) {
    const auto fixed = std::ranges::find(FixedKeys, press.name, &KeyBytes::name);
    if (fixed != FixedKeys.end()) return std::string(fixed->bytes);
    if (press.held.ctrl && !press.held.alt) return ControlCharacter(press);
    // Alt alone is for the program's menus; both together is how some keyboards write a character.
    if (press.held.alt && !press.held.ctrl) return {};
    const bool control = !press.text.empty() && IsControl(press.text.front());
    return control ? std::string() : LineBytesOf(press.text);
}

ViewCommand CommandOf(const KeyPress& press) {
    const auto found = std::ranges::find_if(Chords, [&](const Chord& each) {
        return each.name == press.name && each.cap == press.cap && each.held == press.held;
    });
    return found == Chords.end() ? ViewCommand::None : found->command;
}

} // namespace qncomm
