#include "language/Interpreter.h"

#include "language/Words.h"

#include <algorithm>

namespace qnsim {

Interpreter::Interpreter(Machine& machine)
    : mMachine(machine), mEvaluator(machine, mVariables), mFiles(machine) {}

Error Interpreter::Begin(std::string_view text) {
    mTypedCode.clear();
    const Error error = Parser(text, NoLine, mVariables).Read(mTypedCode);
    if (error != Error::None) return error;
    mLoops.clear();
    mCalls.clear();
    mWhiles.clear();
    mTrap = {};
    mCode = &mTypedCode;
    mAt = 0;
    mState = State::Running;
    return Error::None;
}

Error Interpreter::StoreLine(int number, std::string_view text) {
    if (!mMachine.model.programmable) return Error::NotProgrammable;
    if (number <= 0 || number > LargestLineNumber) return Error::LineNumber;
    if (text.size() + mProgram.Bytes() + mVariables.Bytes() >= mMachine.model.memory)
        return Error::OutOfMemory;
    mProgram.Store(number, text);
    mEvaluator.SetProgramBytes(mProgram.Bytes());
    mLinked = false;
    Code checked;
    return Parser(text, number, mVariables).Read(checked);
}

void Interpreter::Run(int statements) {
    mSliceEnds = false;
    while (mState == State::Running && !mSliceEnds && mMachine.HasRoom() && statements-- > 0) {
        if (mAt >= mCode->size()) {
            Finish();
            return;
        }
        if (mMachine.power.Fails()) {
            mMachine.powerLost = true;
            return;
        }
        const std::size_t at = mAt++;
        const Code* code = mCode;
        (this->*(*code)[at].row->run)((*code)[at]);
        if (mEvaluator.Failure() != Error::None) HandleFailure((*code)[at], at);
    }
}

void Interpreter::HandleFailure(const Statement& statement, std::size_t at) {
    const Error error = mEvaluator.TakeFailure();
    mEvaluator.SetLastError(error, statement.line);
    if (mTrap.line != NoLine && !mTrap.active && InProgram()) {
        mTrap.active = true;
        mTrap.failedAt = at;
        mState = State::Running;
        JumpToLine(mTrap.line);
        if (mEvaluator.Failure() == Error::None) return;
        mEvaluator.TakeFailure();
    }
    mReport = Report{error, statement.line};
    Finish();
}

void Interpreter::Finish() {
    // What was typed may leave files open for the next line; a program that ends closes its own.
    if (InProgram()) mFiles.CloseAll();
    mState = State::Idle;
}

void Interpreter::Break() {
    if (mState == State::Idle) return;
    if (mTransfer) mTransfer->Cancel(mMachine.now, mMachine.out);
    // A running program stops before its next statement, a waiting one in the statement that waits.
    const std::size_t at = mState == State::Running ? mAt : mAt - 1;
    mReport = Report{Error::None, at < mCode->size() ? (*mCode)[at].line : NoLine};
    mData = {};
    mTransfer.reset();
    Finish();
}

std::optional<Interpreter::Report> Interpreter::TakeReport() {
    std::optional<Report> report;
    report.swap(mReport);
    return report;
}

bool Interpreter::Link() {
    if (!mLinked) {
        mReport = LinkLines();
        if (mReport) Finish();
    }
    return mLinked;
}

std::optional<Interpreter::Report> Interpreter::LinkLines() {
    mProgramCode.clear();
    mLineStarts.clear();
    mReading = {};
    for (const auto& [number, text] : mProgram.All()) {
        mLineStarts.emplace(number, mProgramCode.size());
        const Error error = Parser(text, number, mVariables).Read(mProgramCode);
        if (error != Error::None) return Report{error, number};
    }
    for (Statement& statement : mProgramCode) {
        if (!ResolveTargets(statement)) return Report{Error::UndefinedLine, statement.line};
    }
    mLinked = true;
    return std::nullopt;
}

bool Interpreter::ResolveTargets(Statement& statement) {
    const auto known = [this](int line) { return mLineStarts.count(line) != 0; };
    if (statement.row == FindStatement("GOTO") || statement.row == FindStatement("GOSUB")) {
        if (!known(statement.number)) return false;
        statement.jump = mLineStarts.at(statement.number);
    }
    return std::all_of(statement.lines.begin(), statement.lines.end(), known);
}

void Interpreter::JumpToLine(int line) {
    if (!Link()) return;
    const auto start = mLineStarts.find(line);
    if (start == mLineStarts.end()) return Fail(Error::UndefinedLine);
    mCode = &mProgramCode;
    mAt = start->second;
}

void Interpreter::StartProgram(int line) {
    if (!mMachine.model.programmable) return Fail(Error::NotProgrammable);
    if (!Link()) return;
    mFiles.CloseAll();
    mVariables.Clear();
    mReading = {};
    mLoops.clear();
    mCalls.clear();
    mWhiles.clear();
    mTrap = {};
    mCode = &mProgramCode;
    mAt = 0;
    if (line != NoLine) JumpToLine(line);
}

} // namespace qnsim
