#include "language/Words.h"

#include "language/Evaluator.h"
#include "language/Interpreter.h"
#include "language/Parser.h"

#include <array>
#include <unordered_map>
#include <unordered_set>

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

template <class Row>
using Index = std::unordered_map<std::string_view, const Row*>;

template <class Row>
Index<Row> IndexOf(std::span<const Row> table, std::string_view Row::*key) {
    Index<Row> index;
    for (const Row& row : table)
        index.emplace(row.*key, &row);
    return index;
}

template <class Row>
const Row* Find(const Index<Row>& index, std::string_view key) {
    const auto found = index.find(key);
    return found == index.end() ? nullptr : found->second;
}

std::unordered_set<std::string_view> ReservedWords() {
    std::unordered_set<std::string_view> words(ConnectingWords.begin(), ConnectingWords.end());
    for (const StatementRow& row : Statements)
        words.insert(row.words.substr(0, row.words.find(' ')));
    for (const FunctionRow& row : Functions)
        words.insert(row.name);
    return words;
}

} // namespace

std::span<const StatementRow> AllStatements() {
    return Statements;
}

const StatementRow* FindStatement(std::string_view first, std::string_view second) {
    static const auto index = IndexOf(AllStatements(), &StatementRow::words);
    if (!second.empty()) {
        const std::string both = std::string(first) + " " + std::string(second);
        if (const StatementRow* row = Find(index, both)) return row;
    }
    return Find(index, first);
}

std::span<const FunctionRow> AllFunctions() {
    return Functions;
}

const FunctionRow* FindFunction(std::string_view name) {
    static const auto index = IndexOf(AllFunctions(), &FunctionRow::name);
    return Find(index, name);
}

bool IsReserved(std::string_view word) {
    static const auto words = ReservedWords();
    return words.contains(word);
}

} // namespace qnsim
