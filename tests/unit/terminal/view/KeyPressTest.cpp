#include "terminal/view/KeyPress.h"

#include <gtest/gtest.h>

#include <array>
#include <set>

namespace qncomm::testing {
namespace {

constexpr HeldKeys Nothing{};
constexpr HeldKeys Shift{.shift = true};
constexpr HeldKeys Ctrl{.ctrl = true};
constexpr HeldKeys CtrlShift{.shift = true, .ctrl = true};
constexpr HeldKeys Alt{.alt = true};
constexpr HeldKeys CtrlAlt{.ctrl = true, .alt = true};

KeyPress Named(KeyName name, HeldKeys held = Nothing) {
    return {.name = name, .cap = 0, .held = held, .text = {}};
}

KeyPress Cap(char cap, HeldKeys held, std::u16string text = {}) {
    return {.name = KeyName::None, .cap = cap, .held = held, .text = std::move(text)};
}

TEST(KeyBytes, TextIsSentAsTheLinesBytes) {
    EXPECT_EQ(BytesOf(Cap('A', Nothing, u"a")), "a");
    EXPECT_EQ(BytesOf(Cap('A', Shift, u"A")), "A");
    EXPECT_EQ(BytesOf(Cap(0, Nothing, u"\u00E9")), "\xE9");
    EXPECT_EQ(BytesOf(Cap(0, Nothing, u"\u20AC")), "\x80");
    EXPECT_EQ(BytesOf(Cap(0, Nothing, u"\u0416")), "?") << "the character set has no such letter";
    EXPECT_EQ(BytesOf(Cap(0, Nothing, u"\U0001F600")), "?") << "one character, one byte";
    EXPECT_EQ(BytesOf(Cap(0, Nothing)), "");
}

TEST(KeyBytes, KeysWithBytesOfTheirOwnSendThemWhateverTheirTextIs) {
    EXPECT_EQ(BytesOf(Named(KeyName::Enter)), "\r");
    EXPECT_EQ(BytesOf(Named(KeyName::Backspace)), "\b");
    EXPECT_EQ(BytesOf(Named(KeyName::Tab)), "\t");
    EXPECT_EQ(BytesOf(Named(KeyName::Escape)), "\x1B");
    KeyPress enter = Named(KeyName::Enter, Shift);
    enter.text = u"\n";
    EXPECT_EQ(BytesOf(enter), "\r");
}

TEST(KeyBytes, KeysOfTheEditorSendNothing) {
    for (const KeyName name : {KeyName::BackTab, KeyName::Delete, KeyName::PageUp,
                               KeyName::PageDown, KeyName::Home, KeyName::End})
        EXPECT_EQ(BytesOf(Named(name)), "") << static_cast<int>(name);
    KeyPress del = Named(KeyName::Delete);
    del.text = u"\x7F";
    EXPECT_EQ(BytesOf(del), "");
}

TEST(KeyBytes, CtrlWithALetterIsItsControlCharacter) {
    EXPECT_EQ(BytesOf(Cap('A', Ctrl)), "\x01");
    EXPECT_EQ(BytesOf(Cap('Z', Ctrl)), "\x1A");
    EXPECT_EQ(BytesOf(Cap('[', Ctrl)), "\x1B");
    EXPECT_EQ(BytesOf(Cap('_', CtrlShift)), "\x1F");
    EXPECT_EQ(BytesOf(Cap('@', CtrlShift)), std::string(1, '\0'));
    EXPECT_EQ(BytesOf(Cap(' ', Ctrl)), std::string(1, '\0'));
    EXPECT_EQ(BytesOf(Cap('1', Ctrl, u"1")), "") << "there is no such control character";
}

TEST(KeyBytes, ShortcutsOfTheProgramAreNotSent) {
    EXPECT_EQ(BytesOf(Cap('A', CtrlShift, u"\x01")), "");
    EXPECT_EQ(BytesOf(Cap('F', Alt, u"f")), "");
    EXPECT_EQ(BytesOf(Cap('Q', CtrlAlt, u"@")), "@") << "the layout writes a character with both";
}

TEST(KeyBytes, ControlCharactersComeFromNoText) {
    for (const char16_t control : {u'\x01', u'\x1F', u'\x7F', u'\x9F'})
        EXPECT_EQ(BytesOf(Cap(0, Nothing, std::u16string(1, control))), "")
            << static_cast<int>(control);
    EXPECT_EQ(BytesOf(Cap(0, Nothing, u"\u00A0")), "\xA0");
}

TEST(KeyCommands, AreTheChordsThatTheViewKeepsForItself) {
    struct Row {
        KeyPress press;
        ViewCommand command;
    };
    const std::array rows{
        Row{Cap('F', Ctrl), ViewCommand::Search},
        Row{Cap('+', Ctrl), ViewCommand::ZoomIn},
        Row{Cap('+', CtrlShift), ViewCommand::ZoomIn},
        Row{Cap('=', Ctrl), ViewCommand::ZoomIn},
        Row{Cap('-', Ctrl), ViewCommand::ZoomOut},
        Row{Cap('0', Ctrl), ViewCommand::ZoomReset},
        Row{Cap('C', CtrlShift), ViewCommand::Copy},
        Row{Cap('V', CtrlShift), ViewCommand::Paste},
        Row{Cap('A', CtrlShift), ViewCommand::SelectAll},
        Row{Cap('B', CtrlShift), ViewCommand::Break},
        Row{Named(KeyName::Break, Ctrl), ViewCommand::Break},
        Row{Named(KeyName::PageUp, Shift), ViewCommand::PageUp},
        Row{Named(KeyName::PageDown, Shift), ViewCommand::PageDown},
        Row{Named(KeyName::Home, Shift), ViewCommand::ToStart},
        Row{Named(KeyName::End, Shift), ViewCommand::ToEnd},
        Row{Named(KeyName::Tab, Ctrl), ViewCommand::NextControl},
        Row{Named(KeyName::BackTab, CtrlShift), ViewCommand::PreviousControl},
    };
    std::set<ViewCommand> seen;
    for (const Row& row : rows) {
        EXPECT_EQ(CommandOf(row.press), row.command) << static_cast<int>(row.command);
        seen.insert(row.command);
    }
    EXPECT_EQ(seen.size(), 14U) << "every command but None has a chord";
}

TEST(KeyCommands, TakeExactlyTheirModifiers) {
    EXPECT_EQ(CommandOf(Cap('F', CtrlShift)), ViewCommand::None);
    EXPECT_EQ(CommandOf(Cap('F', Nothing, u"f")), ViewCommand::None);
    EXPECT_EQ(CommandOf(Cap('C', Ctrl)), ViewCommand::None) << "Ctrl+C goes to the line";
    EXPECT_EQ(CommandOf(Named(KeyName::PageUp)), ViewCommand::None);
    EXPECT_EQ(CommandOf(Cap('F', {.ctrl = true, .meta = true})), ViewCommand::None);
    EXPECT_EQ(CommandOf(KeyPress{}), ViewCommand::None);
}

} // namespace
} // namespace qncomm::testing
