#pragma once

#include <cstdint>
#include <string>

namespace qncomm {

/// Keys without a character of their own that mean something here.
enum class KeyName : std::uint8_t {
    None,      ///< any other key
    Enter,     ///< either of the two
    Backspace, ///< removes to the left
    Tab,       ///< without Shift
    BackTab,   ///< Tab with Shift, as toolkits name it
    Escape,    ///< also what ends a search
    Delete,    ///< removes to the right
    PageUp,    ///< a page towards older text
    PageDown,  ///< a page towards newer text
    Home,      ///< the oldest text
    End,       ///< the newest text
    Break,     ///< Pause, which with Ctrl is Break
};

/// The modifiers that are held while a key goes down.
struct HeldKeys {
    bool shift = false; ///< either Shift key
    bool ctrl = false;  ///< either Ctrl key
    bool alt = false;   ///< Alt; together with Ctrl it is how some keyboards write a character
    bool meta = false;  ///< the system key, which belongs to the desktop

    /// Whether exactly the same keys are held.
    bool operator==(const HeldKeys&) const = default;
};

/// A key that goes down, as a face hands it over.
struct KeyPress {
    KeyName name = KeyName::None; ///< set for the keys that have one
    char cap = 0;        ///< what the key cap shows, ASCII with capital letters; 0 for other keys
    HeldKeys held;       ///< with which modifiers
    std::u16string text; ///< what the keyboard's layout makes of it; may be empty
};

/// What a key sends to the line: its characters as bytes, CR for Enter, 08 for Backspace, the
/// control character for a letter with Ctrl. Empty for a key that sends nothing, such as a letter
/// with Ctrl and Shift, which is a shortcut of the program around.
std::string BytesOf(const KeyPress& press);

/// What a key does in the view itself. A face carries it out and sends nothing to the line.
enum class ViewCommand : std::uint8_t {
    None,            ///< not a command of the view
    Search,          ///< Ctrl+F: ask for a text to look for
    ZoomIn,          ///< Ctrl with plus
    ZoomOut,         ///< Ctrl with minus
    ZoomReset,       ///< Ctrl+0
    Copy,            ///< Ctrl+Shift+C
    Paste,           ///< Ctrl+Shift+V
    SelectAll,       ///< Ctrl+Shift+A
    Break,           ///< Ctrl+Break or Ctrl+Shift+B: hold the line in the break condition
    PageUp,          ///< Shift with Page Up
    PageDown,        ///< Shift with Page Down
    ToStart,         ///< Shift+Home: the oldest line that is kept
    ToEnd,           ///< Shift+End: the newest, and follow what comes
    NextControl,     ///< Ctrl+Tab: leave the terminal, since Tab alone goes to the line
    PreviousControl, ///< Ctrl+Shift+Tab
};

/// The command of a key with exactly these modifiers; None when it has none.
ViewCommand CommandOf(const KeyPress& press);

} // namespace qncomm
