#include "ConformanceCases.h"

#include <array>

namespace terminal_testing {
namespace {

using namespace std::string_view_literals;

// Screens to start from.
#define ABCDE "a\r\nb\r\nc\r\nd\r\ne"
#define DIGITS "0123456789"

constexpr std::array Cases{
    // Text and single controls
    ConformanceCase{"Text", "hello", "hello", 1, 6},
    ConformanceCase{"TextOfWindows1252", "\x80\x9B\xDF\xFF", "\x80\x9B\xDF\xFF", 1, 5},
    ConformanceCase{"NullAndDeleteShowNothing",
                    "a\0b\x7F"
                    "c"sv,
                    "abc", 1, 4},
    ConformanceCase{"FlowControlBytesShowNothing", "a\x11\x13z", "az", 1, 3},
    ConformanceCase{"ShiftOutKeepsTheCharacterSet", "\x0Eq\x0Fq\x1B(0q", "qqq", 1, 4},
    ConformanceCase{"CarriageReturn", "abc\rX", "Xbc", 1, 2},
    ConformanceCase{"LineFeedKeepsTheColumn", "ab\nc", "ab|  c", 2, 4},
    ConformanceCase{"VerticalTabAndFormFeedAreLineFeeds", "a\vb\fc", "a| b|  c", 3, 4},
    ConformanceCase{"Backspace", "abc\b\bX", "aXc", 1, 3},
    ConformanceCase{"BackspaceStopsAtTheEdge", "a\b\b\bX", "X", 1, 2},
    ConformanceCase{"Tab", "a\tb", "a       b", 1, 10},
    ConformanceCase{"TabStopsAtTheEdge", "\t\t\tb", "         b", 1, 10},
    ConformanceCase{"LineFeedScrollsAtTheBottom", ABCDE "\r\nf", "b|c|d|e|f", 5, 2},

    // Wrapping
    ConformanceCase{"FullRowWaitsWithTheWrap", DIGITS, DIGITS, 1, 10},
    ConformanceCase{"TextGoesOnInTheNextRow", DIGITS "ab", DIGITS "|ab", 2, 3},
    ConformanceCase{"CarriageReturnTakesTheWrapBack", DIGITS "\rX", "X123456789", 1, 2},
    ConformanceCase{"LineFeedTakesTheWrapBack", DIGITS "\nX", DIGITS "|         X", 2, 10},
    ConformanceCase{"CursorMoveTakesTheWrapBack", DIGITS "\x1B[1CX", "012345678X", 1, 10},
    ConformanceCase{"WrapAtTheBottomScrolls", "\x1B[5H" DIGITS "ab", "|||" DIGITS "|ab", 5, 3},
    ConformanceCase{"WithoutWrapTheLastColumnIsOverwritten", "\x1B[?7l" DIGITS "abc", "012345678c",
                    1, 10},
    ConformanceCase{"WrapSwitchedOnAgain", "\x1B[?7l\x1B[?7h" DIGITS "a", DIGITS "|a", 2, 2},
    ConformanceCase{"WrapSwitchedOffWhileItWaits", DIGITS "\x1B[?7lX", "012345678X", 1, 10},

    // Cursor
    ConformanceCase{"CursorPosition", "\x1B[3;4HX", "||   X", 3, 5},
    ConformanceCase{"CursorPositionByTheOtherName", "\x1B[2;2fX", "| X", 2, 3},
    ConformanceCase{"CursorHome", "abc\x1B[HX", "Xbc", 1, 2},
    ConformanceCase{"CursorPositionClamps", "\x1B[99;99HX", "||||         X", 5, 10},
    ConformanceCase{"CursorPositionZeroIsOne", "\x1B[0;0HX", "X", 1, 2},
    ConformanceCase{"CursorUp", "\x1B[4;4H\x1B[2AX", "|   X", 2, 5},
    ConformanceCase{"CursorUpClamps", "\x1B[4;4H\x1B[9AX", "   X", 1, 5},
    ConformanceCase{"CursorDown", "\x1B[2BX", "||X", 3, 2},
    ConformanceCase{"CursorDownClamps", "\x1B[9BX", "||||X", 5, 2},
    ConformanceCase{"CursorForward", "a\x1B[3CX", "a   X", 1, 6},
    ConformanceCase{"CursorBack", "abcd\x1B[2DX", "abXd", 1, 4},
    ConformanceCase{"CursorNextLine", "ab\x1B[2EX", "ab||X", 3, 2},
    ConformanceCase{"CursorPrecedingLine", "\x1B[4;4H\x1B[2FX", "|X", 2, 2},
    ConformanceCase{"CursorToColumn", "abc\x1B[7GX", "abc   X", 1, 8},
    ConformanceCase{"CursorToColumnByTheOtherName", "abc\x1B[7`X", "abc   X", 1, 8},
    ConformanceCase{"ColumnsForward", "a\x1B[3aX", "a   X", 1, 6},
    ConformanceCase{"CursorToRow", "abc\x1B[3dX", "abc||   X", 3, 5},
    ConformanceCase{"RowsForward", "a\x1B[2eX", "a|| X", 3, 3},
    ConformanceCase{"SaveAndRestoreByEscape",
                    "\x1B[2;3H\x1B"
                    "7\x1B[5;5H\x1B"
                    "8X",
                    "|  X", 2, 4},
    ConformanceCase{"SaveAndRestoreBySequence", "\x1B[2;3H\x1B[s\x1B[5;5H\x1B[uX", "|  X", 2, 4},
    ConformanceCase{"RestoreWithoutSaveGoesHome",
                    "abc\x1B"
                    "8X",
                    "Xbc", 1, 2},
    ConformanceCase{"Index",
                    "a\x1B"
                    "DX",
                    "a| X", 2, 3},
    ConformanceCase{"NextLine",
                    "a\x1B"
                    "EX",
                    "a|X", 2, 2},
    ConformanceCase{"ReverseIndex", "\x1B[3;3H\x1BMX", "|  X", 2, 4},
    ConformanceCase{"ReverseIndexScrollsAtTheTop", ABCDE "\x1B[H\x1BMX", "X|a|b|c|d", 1, 2},

    // Tab stops
    ConformanceCase{"TabStopSet", "\x1B[1;4H\x1BH\r\tX", "   X", 1, 5},
    ConformanceCase{"TabStopCleared", "\x1B[1;9H\x1B[g\r\tX", "         X", 1, 10},
    ConformanceCase{"AllTabStopsCleared", "\x1B[3g\tX", "         X", 1, 10},
    ConformanceCase{"TabsForward", "\x1B[1;3H\x1BH\r\x1B[2IX", "        X", 1, 10},
    ConformanceCase{"TabsBack", "\x1B[1;10H\x1B[ZX", "        X", 1, 10},
    ConformanceCase{"TabsBackClamps", "abc\x1B[9ZX", "Xbc", 1, 2},

    // Erasing
    ConformanceCase{"EraseToTheEndOfTheRow", DIGITS "\x1B[1;4H\x1B[K", "012", 1, 4},
    ConformanceCase{"EraseToTheStartOfTheRow", DIGITS "\x1B[1;4H\x1B[1K", "    456789", 1, 4},
    ConformanceCase{"EraseTheRow", DIGITS "\x1B[1;4H\x1B[2K", "", 1, 4},
    ConformanceCase{"EraseToTheEndOfTheScreen", ABCDE "\x1B[3;1H\x1B[J", "a|b", 3, 1},
    ConformanceCase{"EraseToTheStartOfTheScreen", ABCDE "\x1B[3;1H\x1B[1J", "|||d|e", 3, 1},
    ConformanceCase{"EraseTheScreenKeepsTheCursor", ABCDE "\x1B[2J", "", 5, 2},
    ConformanceCase{"EraseOfAnUnknownPartDoesNothing", "abc\x1B[7J\x1B[7K", "abc", 1, 4},
    ConformanceCase{"EraseCharacters", DIGITS "\x1B[1;3H\x1B[4X", "01    6789", 1, 3},
    ConformanceCase{"EraseCharactersClamps", DIGITS "\x1B[1;3H\x1B[99X", "01", 1, 3},

    // Inserting and deleting
    ConformanceCase{"InsertCharacters", DIGITS "\x1B[1;3H\x1B[2@", "01  234567", 1, 3},
    ConformanceCase{"InsertCharactersOverTheEdge", DIGITS "\x1B[1;3H\x1B[99@", "01", 1, 3},
    ConformanceCase{"InsertCharactersInAShortRow", "abc\x1B[1;2H\x1B[2@", "a  bc", 1, 2},
    ConformanceCase{"InsertCharactersBehindTheText", "ab\x1B[1;5H\x1B[2@X", "ab  X", 1, 6},
    ConformanceCase{"DeleteCharacters", DIGITS "\x1B[1;3H\x1B[2P", "01456789", 1, 3},
    ConformanceCase{"DeleteCharactersClamps", DIGITS "\x1B[1;3H\x1B[99P", "01", 1, 3},
    ConformanceCase{"DeleteCharactersBehindTheText", "ab\x1B[1;5H\x1B[2P", "ab", 1, 5},
    ConformanceCase{"InsertRows", ABCDE "\x1B[2;1H\x1B[2L", "a|||b|c", 2, 1},
    ConformanceCase{"InsertRowsClamps", ABCDE "\x1B[2;1H\x1B[99L", "a", 2, 1},
    ConformanceCase{"DeleteRows", ABCDE "\x1B[2;1H\x1B[2M", "a|d|e", 2, 1},
    ConformanceCase{"DeleteRowsClamps", ABCDE "\x1B[2;1H\x1B[99M", "a", 2, 1},
    ConformanceCase{"InsertMode", "abc\x1B[4h\x1B[1;2HXY\x1B[4lZ", "aXYZc", 1, 5},
    ConformanceCase{"InsertModeOverTheEdge", DIGITS "\x1B[4h\x1B[1;9HXYZ", "01234567XY|Z", 2, 2},

    // Scrolling and margins
    ConformanceCase{"ScrollUp", ABCDE "\x1B[2S", "c|d|e", 5, 2},
    ConformanceCase{"ScrollDown", ABCDE "\x1B[2T", "||a|b|c", 5, 2},
    ConformanceCase{"ScrollClamps", ABCDE "\x1B[99S", "", 5, 2},
    ConformanceCase{"MarginsHomeTheCursor", "ab\x1B[2;4rX", "Xb", 1, 2},
    ConformanceCase{"LineFeedScrollsInsideTheMargins", ABCDE "\x1B[2;4r\x1B[4;1H\nX", "a|c|d|X|e",
                    4, 2},
    ConformanceCase{"LineFeedBelowTheMarginsDoesNotScroll", ABCDE "\x1B[2;3r\x1B[5;1H\nX",
                    "a|b|c|d|X", 5, 2},
    ConformanceCase{"ReverseIndexScrollsInsideTheMargins", ABCDE "\x1B[2;4r\x1B[2;1H\x1BMX",
                    "a|X|b|c|e", 2, 2},
    ConformanceCase{"MarginsStopTheCursor", "\x1B[2;4r\x1B[3;1H\x1B[9AX\x1B[9BY", "|X|| Y", 4, 3},
    ConformanceCase{"RowsAreInsertedInsideTheMargins", ABCDE "\x1B[2;4r\x1B[3;1H\x1B[L", "a|b||c|e",
                    3, 1},
    ConformanceCase{"RowsAreDeletedInsideTheMargins", ABCDE "\x1B[2;4r\x1B[3;1H\x1B[M", "a|b|d||e",
                    3, 1},
    ConformanceCase{"RowsOutsideTheMarginsStay", ABCDE "\x1B[2;4r\x1B[5;1H\x1B[L\x1B[M",
                    "a|b|c|d|e", 5, 1},
    ConformanceCase{"MarginsTheWrongWayRoundAreRefused", ABCDE "\x1B[4;2r\x1B[5;1H\nX", "b|c|d|e|X",
                    5, 2},
    ConformanceCase{"MarginsTakenBack", ABCDE "\x1B[2;3r\x1B[r\x1B[5;1H\nX", "b|c|d|e|X", 5, 2},
    ConformanceCase{"OriginModeCountsFromTheTopMargin", "\x1B[2;4r\x1B[?6h\x1B[1;1HX\x1B[9;1HY",
                    "|X||Y", 4, 2},
    ConformanceCase{"OriginModeTakenBack", "\x1B[2;4r\x1B[?6h\x1B[?6lX", "X", 1, 2},

    // Repetition, modes, resets
    ConformanceCase{"Repeat", "ab\x1B[3b", "abbbb", 1, 6},
    ConformanceCase{"RepeatWithoutACharacterShowsBlanks", "\x1B[5b", "", 1, 6},
    ConformanceCase{"NewLineMode", "\x1B[20hab\ncd\x1B[20l\nef", "ab|cd|  ef", 3, 5},
    ConformanceCase{"ModesInOneSequence", "\x1B[4;20habc\nd", "abc|d", 2, 2},
    ConformanceCase{"SoftReset", "\x1B[2;3r\x1B[4h\x1B[20h\x1B[4;2H\x1B[!pX", "||| X", 4, 3},
    ConformanceCase{"FullReset",
                    ABCDE "\x1B[2;3r\x1B[4h\x1B"
                          "cX",
                    "X", 1, 2},

    // Sequences that are swallowed
    ConformanceCase{"UnknownSequences", "a\x1B[5~\x1B[?2004h\x1B[>c\x1B[6n\x1B[1$}b", "ab", 1, 3},
    ConformanceCase{"UnknownEscapes", "a\x1B=\x1B>\x1B#8\x1B%G\x1B(B\x1B)0b", "ab", 1, 3},
    ConformanceCase{"SequenceWithAMarkInTheMiddle", "a\x1B[1?2hb", "ab", 1, 3},
    ConformanceCase{"SequenceWithSeveralIntermediates", "a\x1B[!!pb\x1B(((Bc", "abc", 1, 4},
    ConformanceCase{"PrivateMarkChangesTheMeaning", "abc\x1B[?2J\x1B[?1;1Hd", "abcd", 1, 5},
    ConformanceCase{"TitleEndedByBell", "a\x1B]0;title\ab", "ab", 1, 3},
    ConformanceCase{"TitleEndedByTerminator", "a\x1B]0;title\x1B\\b", "ab", 1, 3},
    ConformanceCase{"DeviceString", "a\x1BPq\a#0;2\nxyz\x1B\\b", "ab", 1, 3},
    ConformanceCase{"OtherStrings", "a\x1B_app\x1B\\\x1B^pm\x1B\\\x1BXsos\x1B\\b", "ab", 1, 3},
    ConformanceCase{"CancelBreaksAStringOff",
                    "a\x1BPxyz\x18"
                    "b",
                    "ab", 1, 3},
    ConformanceCase{"SubstituteBreaksASequenceOff",
                    "a\x1B[12\x1A"
                    "b",
                    "ab", 1, 3},
    ConformanceCase{"EscapeStartsAnew", "a\x1B[12\x1B[2Cb", "a  b", 1, 5},
    ConformanceCase{"ControlsActInsideASequence", "ab\x1B[2\rC\x1B[\nCX", "ab|   X", 2, 5},
    ConformanceCase{"EightBitTextBreaksASequenceOff", "a\x1B[1\xE4z\x1B\xE4z",
                    "a\xE4z"
                    "\xE4z",
                    1, 6},
    ConformanceCase{"DeleteInsideASequenceIsPassedOver",
                    "a\x1B[\x7F"
                    "3CX",
                    "a   X", 1, 6},
};

#undef ABCDE
#undef DIGITS

} // namespace

std::span<const ConformanceCase> ConformanceCases() {
    return Cases;
}

} // namespace terminal_testing
