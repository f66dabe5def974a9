#include "language/Evaluator.h"

#include "language/Token.h"
#include "language/Words.h"

#include <algorithm>
#include <cmath>

namespace qnsim {
namespace {

constexpr std::size_t LongestText = 32767;
constexpr double Yes = -1;
constexpr double LargestBits = 2147483647.0;

bool Holds(char sign, int order) {
    switch (sign) {
    case '=':
        return order == 0;
    case '<':
        return order < 0;
    case '>':
        return order > 0;
    case SignNotEqual:
        return order != 0;
    case SignLessEqual:
        return order <= 0;
    default:
        return order >= 0;
    }
}

} // namespace

double Evaluator::Number(const Expr& expr) {
    switch (expr.node) {
    case Node::Number:
        return expr.number;
    case Node::NumberVariable:
        return mVariables.Number(expr.slot);
    case Node::NumberArray:
        return Element(expr);
    case Node::SystemVariable:
        return SystemValue(expr);
    case Node::NumberCall:
        return (this->*expr.function->number)(expr);
    case Node::Compare:
        return CompareNumbers(expr);
    case Node::CompareText:
        return CompareTexts(expr);
    case Node::Negate:
        return -Number(expr.args[0]);
    case Node::Not:
    case Node::And:
    case Node::Or:
    case Node::Xor:
        return Bitwise(expr);
    default:
        return Arithmetic(expr);
    }
}

double Evaluator::Arithmetic(const Expr& expr) {
    if (expr.args.size() < 2) return 0;
    const double left = Number(expr.args[0]);
    const double right = Number(expr.args[1]);
    switch (expr.node) {
    case Node::Add:
        return Checked(left + right);
    case Node::Subtract:
        return Checked(left - right);
    case Node::Multiply:
        return Checked(left * right);
    case Node::Power:
        return Checked(std::pow(left, right));
    default:
        break;
    }
    if (right == 0) {
        Fail(Error::DivisionByZero);
        return 0;
    }
    if (expr.node == Node::Divide) return Checked(left / right);
    if (expr.node == Node::WholeDivide) return Checked(std::trunc(left / right));
    return Checked(std::fmod(left, right));
}

double Evaluator::Checked(double value) {
    if (std::isfinite(value)) return value;
    Fail(Error::Overflow);
    return 0;
}

std::int64_t Evaluator::ToBits(double value) {
    if (std::abs(value) <= LargestBits) return std::llrint(value);
    Fail(Error::Overflow);
    return 0;
}

double Evaluator::Bitwise(const Expr& expr) {
    const std::int64_t left = ToBits(Number(expr.args[0]));
    if (expr.node == Node::Not) return static_cast<double>(~left);
    const std::int64_t right = ToBits(Number(expr.args[1]));
    if (expr.node == Node::And) return static_cast<double>(left & right);
    if (expr.node == Node::Or) return static_cast<double>(left | right);
    return static_cast<double>(left ^ right);
}

double Evaluator::CompareNumbers(const Expr& expr) {
    const double left = Number(expr.args[0]);
    const double right = Number(expr.args[1]);
    const int above = left > right ? 1 : 0;
    return Holds(expr.sign, left < right ? -1 : above) ? Yes : 0;
}

double Evaluator::CompareTexts(const Expr& expr) {
    const std::string left = Text(expr.args[0]);
    return Holds(expr.sign, left.compare(Text(expr.args[1]))) ? Yes : 0;
}

double Evaluator::Element(const Expr& expr) {
    const double* element = mVariables.NumberElement(expr.slot, Number(expr.args[0]));
    if (element == nullptr) Fail(Error::SubscriptOutOfRange);
    return element == nullptr ? 0 : *element;
}

double Evaluator::SystemValue(const Expr& expr) {
    const double number = Number(expr.args[0]);
    if (!SystemVariables::Has(number)) {
        Fail(Error::IllegalArgument);
        return 0;
    }
    return mMachine.system.Get(static_cast<int>(number));
}

std::string Evaluator::Limited(std::string text) {
    if (text.size() <= LongestText) return text;
    Fail(Error::StringTooLong);
    return {};
}

std::string Evaluator::Text(const Expr& expr) {
    switch (expr.node) {
    case Node::Text:
        return expr.text;
    case Node::TextVariable:
        return mVariables.Text(expr.slot);
    case Node::TextCall:
        return Limited((this->*expr.function->text)(expr));
    case Node::TextArray: {
        const std::string* element = mVariables.TextElement(expr.slot, Number(expr.args[0]));
        if (element == nullptr) Fail(Error::SubscriptOutOfRange);
        return element == nullptr ? std::string() : *element;
    }
    case Node::Join: {
        std::string left = Text(expr.args[0]);
        left += Text(expr.args[1]);
        return Limited(std::move(left));
    }
    default:
        return {};
    }
}

int Evaluator::Whole(const Expr& expr, int low, int high, int fallback) {
    if (!expr.IsPresent()) return fallback;
    const double value = std::nearbyint(Number(expr));
    if (value >= low && value <= high) return static_cast<int>(value);
    Fail(Error::IllegalArgument);
    return fallback;
}

std::uint64_t Evaluator::FreeMemory() const {
    const std::uint64_t used = mProgramBytes + mVariables.Bytes();
    return mMachine.model.memory - std::min(mMachine.model.memory, used);
}

void Evaluator::Assign(const Expr& target, const Expr& value) {
    if (target.IsText()) {
        AssignText(target, Text(value));
    } else {
        AssignNumber(target, Number(value));
    }
}

void Evaluator::AssignNumber(const Expr& target, double value) {
    if (mError != Error::None) return;
    if (target.whole) value = static_cast<double>(ToBits(value));
    if (target.node == Node::NumberVariable) {
        mVariables.Number(target.slot) = value;
    } else if (target.node == Node::SystemVariable) {
        const double number = Number(target.args[0]);
        if (!SystemVariables::Has(number)) return Fail(Error::IllegalArgument);
        const std::int64_t bits = ToBits(value);
        if (mError != Error::None) return;
        mMachine.system.Set(static_cast<int>(number), static_cast<int>(bits));
    } else {
        double* element = mVariables.NumberElement(target.slot, Number(target.args[0]));
        if (element == nullptr) return Fail(Error::SubscriptOutOfRange);
        *element = value;
        if (FreeMemory() == 0) Fail(Error::OutOfMemory);
    }
}

void Evaluator::AssignText(const Expr& target, std::string value) {
    if (mError != Error::None) return;
    if (value.size() > FreeMemory()) return Fail(Error::OutOfMemory);
    if (target.node == Node::TextVariable) {
        mVariables.SetText(target.slot, std::move(value));
        return;
    }
    const double index = Number(target.args[0]);
    if (mError != Error::None) return;
    Fail(mVariables.SetTextElement(target.slot, index, std::move(value)));
}

} // namespace qnsim
