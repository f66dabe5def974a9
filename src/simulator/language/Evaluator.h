#pragma once

// Works out expressions.

#include "Errors.h"
#include "language/Ast.h"
#include "language/Machine.h"
#include "language/Variables.h"

#include <cstdint>
#include <string>

namespace qnsim {

/// An error is kept until it is taken; the value worked out meanwhile means nothing.
class Evaluator {
  public:
    Evaluator(Machine& machine, Variables& variables) : mMachine(machine), mVariables(variables) {}

    double Number(const Expr& expr);
    std::string Text(const Expr& expr);

    /// A number as a whole number between the limits, or IllegalArgument. An absent one is the
    /// fallback.
    int Whole(const Expr& expr, int low, int high, int fallback = 0);

    /// Stores a value in the variable that the target names.
    void Assign(const Expr& target, const Expr& value);
    void AssignNumber(const Expr& target, double value);
    void AssignText(const Expr& target, std::string value);

    void Fail(Error error) {
        if (mError == Error::None) mError = error;
    }
    Error Failure() const { return mError; }
    Error TakeFailure() {
        const Error error = mError;
        mError = Error::None;
        return error;
    }

    /// Working memory: the owner of the program tells how much of it the program's text takes.
    void SetProgramBytes(std::uint64_t bytes) { mProgramBytes = bytes; }
    std::uint64_t FreeMemory() const;
    /// The last error of a program that traps its errors, and its line.
    void SetLastError(Error error, int line) {
        mLastError = static_cast<int>(error);
        mLastErrorLine = line;
    }

    /// The functions, called through their table.
    double Absolute(const Expr& call);
    double Ascii(const Expr& call);
    double WholePart(const Expr& call);
    double SignOf(const Expr& call);
    double SquareRoot(const Expr& call);
    double Length(const Expr& call);
    double Value(const Expr& call);
    double Position(const Expr& call);
    double Free(const Expr& call);
    double ErrorNumber(const Expr& call);
    double ErrorLine(const Expr& call);
    double Random(const Expr& call);
    std::string Character(const Expr& call);
    std::string NumberToText(const Expr& call);
    std::string Left(const Expr& call);
    std::string Right(const Expr& call);
    std::string Middle(const Expr& call);
    std::string Spaces(const Expr& call);
    std::string Repeat(const Expr& call);
    std::string UpperCase(const Expr& call);
    std::string Version(const Expr& call);
    std::string Hex(const Expr& call);

  private:
    double Arithmetic(const Expr& expr);
    double Bitwise(const Expr& expr);
    double CompareNumbers(const Expr& expr);
    double CompareTexts(const Expr& expr);
    double Element(const Expr& expr);
    double SystemValue(const Expr& expr);
    double Checked(double value);
    std::int64_t ToBits(double value);
    std::string Limited(std::string text);

    Machine& mMachine;
    Variables& mVariables;
    Error mError = Error::None;
    std::uint64_t mProgramBytes = 0;
    int mLastError = 0;
    int mLastErrorLine = 0;
    std::uint64_t mRandom = 1;
};

} // namespace qnsim
