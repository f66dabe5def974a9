// Assignment, decisions, jumps and loops.
#include "language/Interpreter.h"
#include "language/Words.h"

#include <algorithm>
#include <cmath>

namespace qnsim {
namespace {

constexpr std::size_t DeepestCalls = 256;
constexpr std::size_t DeepestLoops = 64;

} // namespace

void Interpreter::Assign(const Statement& statement) {
    mEvaluator.Assign(statement.args[0], statement.args[1]);
}

void Interpreter::If(const Statement& statement) {
    if (mEvaluator.Number(statement.args[0]) == 0) mAt = statement.jump;
}

void Interpreter::Jump(const Statement& statement) {
    mAt = statement.jump;
}

void Interpreter::Goto(const Statement& statement) {
    if (InProgram()) {
        mAt = statement.jump;
    } else {
        JumpToLine(statement.number);
    }
}

void Interpreter::Gosub(const Statement& statement) {
    if (mCalls.size() >= DeepestCalls) return Fail(Error::NestingTooDeep);
    mCalls.push_back({mCode, mAt});
    Goto(statement);
}

void Interpreter::Return(const Statement& /*statement*/) {
    if (mCalls.empty()) return Fail(Error::ReturnWithoutGosub);
    mCode = mCalls.back().code;
    mAt = mCalls.back().at;
    mCalls.pop_back();
}

void Interpreter::On(const Statement& statement) {
    if (statement.number2 == 1) {
        mTrap.line = statement.number;
        return;
    }
    const int choice = mEvaluator.Whole(statement.args[0], 0, 255);
    if (mEvaluator.Failure() != Error::None || choice < 1
        || choice > static_cast<int>(statement.lines.size())) {
        return;
    }
    if (statement.number == 1) {
        if (mCalls.size() >= DeepestCalls) return Fail(Error::NestingTooDeep);
        mCalls.push_back({mCode, mAt});
    }
    JumpToLine(statement.lines[static_cast<std::size_t>(choice - 1)]);
}

bool Interpreter::LoopGoesOn(const ForFrame& frame) const {
    const double value = mVariables.Number(frame.slot);
    return frame.step >= 0 ? value <= frame.limit : value >= frame.limit;
}

void Interpreter::For(const Statement& statement) {
    const Expr& variable = statement.args[0];
    ForFrame frame{variable.slot, mEvaluator.Number(statement.args[2]), 1, mCode, mAt};
    if (statement.args[3].IsPresent()) frame.step = mEvaluator.Number(statement.args[3]);
    mEvaluator.Assign(variable, statement.args[1]);
    if (mEvaluator.Failure() != Error::None) return;
    // A loop that was left by a jump and is begun again takes its old place.
    const auto same = std::find_if(mLoops.begin(), mLoops.end(),
                                   [&](const ForFrame& loop) { return loop.slot == frame.slot; });
    mLoops.erase(same, mLoops.end());
    if (!LoopGoesOn(frame)) return SkipLoop("FOR", "NEXT", Error::ForWithoutNext);
    if (mLoops.size() >= DeepestLoops) return Fail(Error::NestingTooDeep);
    mLoops.push_back(frame);
}

void Interpreter::Next(const Statement& statement) {
    if (statement.number != Variables::NoSlot) {
        while (!mLoops.empty() && mLoops.back().slot != statement.number)
            mLoops.pop_back();
    }
    if (mLoops.empty()) return Fail(Error::NextWithoutFor);
    const ForFrame& frame = mLoops.back();
    mVariables.Number(frame.slot) += frame.step;
    if (LoopGoesOn(frame)) {
        mCode = frame.code;
        mAt = frame.body;
    } else {
        mLoops.pop_back();
    }
}

void Interpreter::SkipLoop(std::string_view opening, std::string_view closing, Error missing) {
    const StatementRow* opens = FindStatement(opening);
    const StatementRow* closes = FindStatement(closing);
    int depth = 1;
    for (std::size_t at = mAt; at < mCode->size(); ++at) {
        if ((*mCode)[at].row == opens) ++depth;
        if ((*mCode)[at].row == closes && --depth == 0) {
            mAt = at + 1;
            return;
        }
    }
    Fail(missing);
}

void Interpreter::While(const Statement& statement) {
    const CallFrame here{mCode, mAt - 1};
    if (mEvaluator.Number(statement.args[0]) == 0) {
        return SkipLoop("WHILE", "WEND", Error::WhileWithoutWend);
    }
    const auto same = std::find_if(mWhiles.begin(), mWhiles.end(), [&](const CallFrame& loop) {
        return loop.code == here.code && loop.at == here.at;
    });
    mWhiles.erase(same, mWhiles.end());
    if (mWhiles.size() >= DeepestLoops) return Fail(Error::NestingTooDeep);
    mWhiles.push_back(here);
}

void Interpreter::Wend(const Statement& /*statement*/) {
    if (mWhiles.empty()) return Fail(Error::WendWithoutWhile);
    mCode = mWhiles.back().code;
    mAt = mWhiles.back().at;
    mWhiles.pop_back();
}

void Interpreter::Dim(const Statement& statement) {
    for (const Expr& variable : statement.args) {
        const double last = mEvaluator.Number(variable.args[0]);
        if (last * 8 > static_cast<double>(mEvaluator.FreeMemory())) Fail(Error::OutOfMemory);
        if (mEvaluator.Failure() != Error::None) return;
        Fail(mVariables.Dimension(variable.slot, variable.IsText(), last));
    }
}

void Interpreter::End(const Statement& /*statement*/) {
    Finish();
}

void Interpreter::Nothing(const Statement& /*statement*/) {}

void Interpreter::Resume(const Statement& statement) {
    if (!mTrap.active) return Fail(Error::ResumeWithoutError);
    mTrap.active = false;
    mCode = &mProgramCode;
    mAt = mTrap.failedAt + (statement.number2 == 1 ? 1 : 0);
    if (statement.number2 == 2) JumpToLine(statement.number);
}

} // namespace qnsim
