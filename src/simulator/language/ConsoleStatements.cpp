// PRINT and INPUT, files, and the modes of the console.
#include "Text.h"
#include "language/Interpreter.h"

namespace qnsim {
namespace {

constexpr std::size_t ZoneWidth = 14;
constexpr int LargestFileNumber = 255;

} // namespace

std::string Interpreter::PrintedText(const Statement& statement) {
    std::string line;
    for (std::size_t i = 0; i < statement.text.size(); ++i) {
        const Expr& item = statement.args[i + 1];
        if (item.IsText()) {
            line += mEvaluator.Text(item);
        } else if (item.IsPresent()) {
            line += NumberText(mEvaluator.Number(item));
        }
        if (statement.text[i] == ',') line.append(ZoneWidth - line.size() % ZoneWidth, ' ');
    }
    const bool goesOn = !statement.text.empty() && statement.text.back() != ' ';
    return goesOn ? line : line + "\r\n";
}

void Interpreter::Print(const Statement& statement) {
    const std::string text = PrintedText(statement);
    if (mEvaluator.Failure() != Error::None) return;
    if (!statement.args[0].IsPresent()) {
        mMachine.out += text;
        return;
    }
    const int number = mEvaluator.Whole(statement.args[0], 1, LargestFileNumber);
    if (mEvaluator.Failure() == Error::None) Fail(mFiles.Write(number, text));
}

void Interpreter::Input(const Statement& statement) {
    if (!statement.args[0].IsPresent()) {
        mMachine.out += statement.text;
        mState = State::NeedsLine;
        return;
    }
    const int number = mEvaluator.Whole(statement.args[0], 1, LargestFileNumber);
    for (std::size_t i = 1; i < statement.args.size(); ++i) {
        if (mEvaluator.Failure() != Error::None) return;
        const bool whole = statement.number == 1;
        FileTable::Reading reading = whole ? mFiles.ReadLine(number) : mFiles.ReadField(number);
        if (reading.error != Error::None) return Fail(reading.error);
        if (statement.args[i].IsText()) {
            mEvaluator.AssignText(statement.args[i], std::move(reading.text));
        } else {
            mEvaluator.AssignNumber(statement.args[i], TextNumber(reading.text));
        }
    }
}

void Interpreter::GiveLine(const std::string& line) {
    if (mState != State::NeedsLine) return;
    mState = State::Running;
    const std::size_t at = mAt - 1;
    AcceptInput(line);
    if (mEvaluator.Failure() != Error::None) HandleFailure((*mCode)[at], at);
}

void Interpreter::AcceptInput(const std::string& line) {
    const Statement& statement = (*mCode)[mAt - 1];
    const auto fields = Split(line, ',');
    for (std::size_t i = 1; i < statement.args.size(); ++i) {
        const std::string_view field =
            i <= fields.size() ? Trim(fields[i - 1]) : std::string_view();
        if (!statement.args[i].IsText()) {
            mEvaluator.AssignNumber(statement.args[i], TextNumber(field));
        } else if (statement.number == 1) {
            mEvaluator.AssignText(statement.args[i], line);
        } else {
            mEvaluator.AssignText(statement.args[i], std::string(field));
        }
    }
}

void Interpreter::Open(const Statement& statement) {
    const std::string path = mEvaluator.Text(statement.args[0]);
    const int number = mEvaluator.Whole(statement.args[1], 1, LargestFileNumber);
    if (mEvaluator.Failure() != Error::None) return;
    Fail(mFiles.Open(number, path, static_cast<char>(statement.number)));
}

void Interpreter::Close(const Statement& statement) {
    if (statement.args.empty()) mFiles.CloseAll();
    for (const Expr& argument : statement.args) {
        const int number = mEvaluator.Whole(argument, 1, LargestFileNumber);
        if (mEvaluator.Failure() != Error::None) return;
        Fail(mFiles.Close(number));
    }
}

void Interpreter::Immediate(const Statement& statement) {
    mMachine.immediate = statement.number == 1;
}

void Interpreter::Reboot(const Statement& /*statement*/) {
    mMachine.restartWanted = true;
    Finish();
}

} // namespace qnsim
