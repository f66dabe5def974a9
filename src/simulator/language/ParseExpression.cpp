#include "language/Parser.h"
#include "language/Words.h"

#include <algorithm>
#include <array>

namespace qnsim {
namespace {

constexpr int DeepestNesting = 64;
constexpr int TallestTree = 400;
constexpr int TopLevel = 6; // the tightest binary operator

struct Operator {
    int level; // loosest first
    char sign; // 0 = the word
    std::string_view word;
    Node node;
};

constexpr std::array<Operator, 17> Operators{{
    {0, 0, "OR", Node::Or},
    {0, 0, "XOR", Node::Xor},
    {1, 0, "AND", Node::And},
    {2, '=', "", Node::Compare},
    {2, '<', "", Node::Compare},
    {2, '>', "", Node::Compare},
    {2, SignNotEqual, "", Node::Compare},
    {2, SignLessEqual, "", Node::Compare},
    {2, SignGreaterEqual, "", Node::Compare},
    {3, '+', "", Node::Add},
    {3, '-', "", Node::Subtract},
    {4, 0, "MOD", Node::Modulo},
    {5, '*', "", Node::Multiply},
    {5, '/', "", Node::Divide},
    {5, '\\', "", Node::WholeDivide},
    {6, '^', "", Node::Power},
    {6, 0, "POW", Node::Power},
}};

/// Counts a level of nesting while it lives.
class Nesting {
  public:
    explicit Nesting(int& depth) : mDepth(++depth) {}
    ~Nesting() { --mDepth; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;
    bool TooDeep() const { return mDepth > DeepestNesting; }

  private:
    int& mDepth;
};

const Operator* FindOperator(const Token& token, int level) {
    const auto* found =
        std::find_if(Operators.begin(), Operators.end(), [&](const Operator& entry) {
            if (entry.level != level) return false;
            return entry.sign != 0 ? token.kind == TokenKind::Sign && token.sign == entry.sign
                                   : token.kind == TokenKind::Word && token.text == entry.word;
        });
    return found == Operators.end() ? nullptr : found;
}

} // namespace

Expr Parser::Combine(Node node, char sign, Expr left, Expr right) {
    Expr result;
    result.node = node;
    result.sign = sign;
    const bool texts = left.IsText() && right.IsText();
    if (left.IsText() != right.IsText()) Fail(Error::TypeMismatch);
    if (texts && node == Node::Add) {
        result.node = Node::Join;
    } else if (texts && node == Node::Compare) {
        result.node = Node::CompareText;
    } else if (texts) {
        Fail(Error::TypeMismatch);
    }
    result.depth = std::max(left.depth, right.depth) + 1;
    if (result.depth > TallestTree) Fail(Error::NestingTooDeep);
    result.args.push_back(std::move(left));
    result.args.push_back(std::move(right));
    return result;
}

Expr Parser::ReadExpression(int level) {
    if (level > TopLevel) return ReadUnary();
    Expr left = ReadExpression(level + 1);
    while (const Operator* found = FindOperator(mTokens.Current(), level)) {
        mTokens.Next();
        Expr right = ReadExpression(level + 1);
        left = Combine(found->node, found->sign, std::move(left), std::move(right));
    }
    return left;
}

Expr Parser::ReadUnary() {
    const Nesting nesting(mDepth);
    if (nesting.TooDeep()) {
        Fail(Error::NestingTooDeep);
        return {};
    }
    const bool inverts = TakeWord("NOT");
    if (!inverts && TakeSign('+')) return ReadUnary();
    if (!inverts && !TakeSign('-')) return ReadPrimary();
    // The sign takes a power with it (-2^2 is -4), NOT takes a comparison.
    Expr result;
    result.node = inverts ? Node::Not : Node::Negate;
    Expr inner = ReadExpression(inverts ? 2 : TopLevel);
    Require(inner, 'n');
    result.depth = inner.depth + 1;
    result.args.push_back(std::move(inner));
    return result;
}

Expr Parser::ReadPrimary() {
    Expr result;
    const Token& token = mTokens.Current();
    if (token.kind == TokenKind::Number) {
        result.node = Node::Number;
        result.number = token.number;
        mTokens.Next();
        return result;
    }
    if (token.kind == TokenKind::Text) {
        result.node = Node::Text;
        result.text = token.text;
        mTokens.Next();
        return result;
    }
    if (token.kind == TokenKind::Word) return ReadWordValue();
    if (!TakeSign('(')) {
        Fail(Error::Syntax);
        return result;
    }
    result = ReadExpression();
    ExpectSign(')');
    return result;
}

Expr Parser::ReadWordValue() {
    const std::string name = mTokens.Current().text;
    const FunctionRow* function = FindFunction(name);
    mTokens.Next();
    if (function != nullptr) return ReadCall(*function);
    if (IsReserved(name)) {
        Fail(Error::Syntax);
        return {};
    }
    return ReadVariable(name);
}

Expr Parser::ReadCall(const FunctionRow& function) {
    Statement arguments;
    if (!function.args.empty()) {
        ExpectSign('(');
        ReadArguments(arguments, function.args);
        ExpectSign(')');
    }
    Expr result;
    result.node = function.text != nullptr ? Node::TextCall : Node::NumberCall;
    result.function = &function;
    result.args = std::move(arguments.args);
    for (const Expr& argument : result.args)
        result.depth = std::max(result.depth, argument.depth + 1);
    return result;
}

int Parser::Slot(int slot) {
    if (slot != Variables::NoSlot) return slot;
    Fail(Error::OutOfMemory);
    return 0;
}

Expr Parser::ReadVariable(std::string_view name) {
    const std::string key(name);
    const bool text = key.back() == '$';
    Expr result;
    result.whole = key.back() == '%';
    if (name == "SYSVAR") result.node = Node::SystemVariable;
    if (!TakeSign('(')) {
        if (name == "SYSVAR") Fail(Error::Syntax);
        result.node = text ? Node::TextVariable : Node::NumberVariable;
        result.slot = Slot(text ? mVariables.TextSlot(key) : mVariables.NumberSlot(key));
        return result;
    }
    if (name != "SYSVAR") {
        result.node = text ? Node::TextArray : Node::NumberArray;
        result.slot = Slot(text ? mVariables.TextArraySlot(key) : mVariables.NumberArraySlot(key));
    }
    result.args.push_back(ReadNumberExpression());
    result.depth = result.args.front().depth + 1;
    ExpectSign(')');
    return result;
}

void Parser::Require(const Expr& expr, char kind) {
    if (expr.IsPresent() && expr.IsText() != (kind == 's')) Fail(Error::TypeMismatch);
}

Expr Parser::ReadNumberExpression() {
    Expr result = ReadExpression();
    Require(result, 'n');
    return result;
}

Expr Parser::ReadTextExpression() {
    Expr result = ReadExpression();
    Require(result, 's');
    return result;
}

} // namespace qnsim
