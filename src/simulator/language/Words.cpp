#include "language/Words.h"

#include "language/Evaluator.h"
#include "language/Interpreter.h"
#include "language/Parser.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace qnsim {
namespace {

using P = Parser;
using I = Interpreter;
using E = Evaluator;

constexpr std::array Statements{
    StatementRow{"LET", "", &P::ReadLet, &I::Assign},
    StatementRow{"IF", "", nullptr, &I::If},
    StatementRow{"ELSE", "", nullptr, &I::Jump},
    StatementRow{"GOTO", "", &P::ReadGoto, &I::Goto},
    StatementRow{"GOSUB", "", &P::ReadGoto, &I::Gosub},
    StatementRow{"RETURN", "", nullptr, &I::Return},
    StatementRow{"ON", "", &P::ReadOn, &I::On},
    StatementRow{"RESUME", "", &P::ReadResume, &I::Resume},
    StatementRow{"FOR", "", &P::ReadFor, &I::For},
    StatementRow{"NEXT", "", &P::ReadNext, &I::Next},
    StatementRow{"WHILE", "n", nullptr, &I::While},
    StatementRow{"WEND", "", nullptr, &I::Wend},
    StatementRow{"DIM", "", &P::ReadDim, &I::Dim},
    StatementRow{"END", "", nullptr, &I::End},
    StatementRow{"STOP", "", nullptr, &I::End},
    StatementRow{"REM", "", &P::ReadRemark, &I::Nothing},
    StatementRow{"BEEP", "", nullptr, &I::Nothing},
    StatementRow{"PRINT", "", &P::ReadPrint, &I::Print},
    StatementRow{"INPUT", "", &P::ReadInput, &I::Input},
    StatementRow{"LINE INPUT", "", &P::ReadLineInput, &I::Input},
    StatementRow{"DATA", "", &P::ReadData, &I::Nothing},
    StatementRow{"READ", "", &P::ReadVariables, &I::Read},
    StatementRow{"RESTORE", "", &P::ReadRestore, &I::Restore},
    StatementRow{"OPEN", "", &P::ReadOpen, &I::Open},
    StatementRow{"CLOSE", "", &P::ReadClose, &I::Close},
    StatementRow{"NEW", "", nullptr, &I::New},
    StatementRow{"LIST", "", &P::ReadList, &I::List},
    StatementRow{"RUN", "?n", nullptr, &I::RunProgram},
    StatementRow{"SAVE", "s?L", nullptr, &I::Save},
    StatementRow{"LOAD", "s", nullptr, &I::Load},
    StatementRow{"MERGE", "s", nullptr, &I::Merge},
    StatementRow{"IMMEDIATE", "", &P::ReadOnOff, &I::Immediate},
    StatementRow{"REBOOT", "", nullptr, &I::Reboot},
    StatementRow{"KILL", "s", nullptr, &I::Kill},
    StatementRow{"COPY", "ss", nullptr, &I::Copy},
    StatementRow{"CHDIR", "s", nullptr, &I::ChangeDirectory},
    StatementRow{"FORMAT", "s?A", nullptr, &I::Format},
    StatementRow{"FILES", "?s?A", nullptr, &I::Files},
    StatementRow{"SETUP WRITE", "s", nullptr, &I::SetupWrite},
    StatementRow{"SETUP", "s", nullptr, &I::Setup},
    StatementRow{"FONTS", "", nullptr, &I::Fonts},
    StatementRow{"REMOVE FONT", "s", nullptr, &I::RemoveFont},
    StatementRow{"IMAGES", "", nullptr, &I::Images},
    StatementRow{"REMOVE IMAGE", "s", nullptr, &I::RemoveImage},
    StatementRow{"IMAGE LOAD", "sn?s", nullptr, &I::ImageLoad},
    StatementRow{"FILE& LOAD", "sn", nullptr, &I::FileLoad},
    StatementRow{"TRANSFER K", "s?s", nullptr, &I::TransferKermit},
    StatementRow{"TRANSFER Z", "s?s", nullptr, &I::TransferZModem},
    StatementRow{"CLL", "", nullptr, &I::ClearLabel},
    StatementRow{"PP", "nn", nullptr, &I::Position},
    StatementRow{"AN", "n", nullptr, &I::Anchor},
    StatementRow{"DIR", "n", nullptr, &I::Direction},
    StatementRow{"NORIMAGE", "", nullptr, &I::NormalImage},
    StatementRow{"INVIMAGE", "", nullptr, &I::InverseImage},
    StatementRow{"FT", "s?n?n?n", nullptr, &I::Font},
    StatementRow{"PT", "", &P::ReadLooseText, &I::LabelText},
    StatementRow{"PM", "s", nullptr, &I::LabelImage},
    StatementRow{"PL", "n?n", nullptr, &I::LabelLine},
    StatementRow{"PX", "nn?n", nullptr, &I::LabelBox},
    StatementRow{"PF", "?n", nullptr, &I::PrintFeed},
};

constexpr std::array Functions{
    FunctionRow{"ABS", "n", &E::Absolute, nullptr},
    FunctionRow{"ASC", "s", &E::Ascii, nullptr},
    FunctionRow{"INT", "n", &E::WholePart, nullptr},
    FunctionRow{"SGN", "n", &E::SignOf, nullptr},
    FunctionRow{"SQR", "n", &E::SquareRoot, nullptr},
    FunctionRow{"LEN", "s", &E::Length, nullptr},
    FunctionRow{"VAL", "s", &E::Value, nullptr},
    FunctionRow{"INSTR", "ss", &E::Position, nullptr},
    FunctionRow{"FRE", "n", &E::Free, nullptr},
    FunctionRow{"ERR", "", &E::ErrorNumber, nullptr},
    FunctionRow{"ERL", "", &E::ErrorLine, nullptr},
    FunctionRow{"RND", "n", &E::Random, nullptr},
    FunctionRow{"CHR$", "n", nullptr, &E::Character},
    FunctionRow{"STR$", "n", nullptr, &E::NumberToText},
    FunctionRow{"LEFT$", "sn", nullptr, &E::Left},
    FunctionRow{"RIGHT$", "sn", nullptr, &E::Right},
    FunctionRow{"MID$", "sn?n", nullptr, &E::Middle},
    FunctionRow{"SPACE$", "n", nullptr, &E::Spaces},
    FunctionRow{"STRING$", "ns", nullptr, &E::Repeat},
    FunctionRow{"UPPER$", "s", nullptr, &E::UpperCase},
    FunctionRow{"VERSION$", "n", nullptr, &E::Version},
    FunctionRow{"HEX$", "n", nullptr, &E::Hex},
};

constexpr std::array<std::string_view, 17> ConnectingWords{
    "TO",  "STEP", "THEN",   "ELSE",   "AS",    "OFF",   "AND",  "OR", "XOR",
    "NOT", "MOD",  "OUTPUT", "APPEND", "ERROR", "WRITE", "FONT", "POW"};

using Rows = std::unordered_map<std::string_view, int>;

template <typename Table>
Rows IndexOf(const Table& table, std::string_view (*key)(const typename Table::value_type&)) {
    Rows rows;
    for (std::size_t i = 0; i < table.size(); ++i)
        rows.emplace(key(table[i]), static_cast<int>(i));
    return rows;
}

const Rows& StatementRows() {
    static const Rows rows = IndexOf(
        Statements, +[](const StatementRow& row) { return row.words; });
    return rows;
}

const Rows& FunctionRows() {
    static const Rows rows = IndexOf(
        Functions, +[](const FunctionRow& row) { return row.name; });
    return rows;
}

Rows ReservedWords() {
    Rows words;
    for (const StatementRow& row : Statements)
        words.emplace(row.words.substr(0, row.words.find(' ')), 0);
    for (const FunctionRow& row : Functions)
        words.emplace(row.name, 0);
    for (const std::string_view word : ConnectingWords)
        words.emplace(word, 0);
    return words;
}

int RowOf(const Rows& rows, std::string_view key) {
    const auto found = rows.find(key);
    return found == rows.end() ? -1 : found->second;
}

} // namespace

int FindStatement(std::string_view first, std::string_view second) {
    if (!second.empty()) {
        const int both = RowOf(StatementRows(), std::string(first) + " " + std::string(second));
        if (both >= 0) return both;
    }
    return RowOf(StatementRows(), first);
}

const StatementRow& StatementAt(int row) {
    return Statements[static_cast<std::size_t>(row)];
}

int StatementCount() {
    return static_cast<int>(Statements.size());
}

int AssignRow() {
    return 0;
}
int IfRow() {
    return 1;
}
int JumpRow() {
    return 2;
}
int GotoRow() {
    return 3;
}

int FindFunction(std::string_view name) {
    return RowOf(FunctionRows(), name);
}

const FunctionRow& FunctionAt(int row) {
    return Functions[static_cast<std::size_t>(row)];
}

int FunctionCount() {
    return static_cast<int>(Functions.size());
}

bool IsReserved(std::string_view word) {
    static const Rows words = ReservedWords();
    return words.count(word) != 0;
}

} // namespace qnsim
