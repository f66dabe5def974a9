#include "language/Parser.h"

#include "Text.h"
#include "language/Words.h"

namespace qnsim {
namespace {

constexpr int DeepestIf = 32;

} // namespace

int TakeLineNumber(std::string_view& text) {
    text = Trim(text);
    std::size_t digits = 0;
    int number = 0;
    while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') {
        if (number <= LargestLineNumber) number = number * 10 + (text[digits] - '0');
        ++digits;
    }
    if (digits == 0) return -1;
    text = Trim(text.substr(digits));
    return number;
}

Parser::Parser(std::string_view text, int line, Variables& variables)
    : mTokens(text), mLine(line), mVariables(variables) {}

Error Parser::Read(Code& code) {
    mCode = &code;
    const std::size_t start = code.size();
    ReadStatements();
    if (!AtEnd()) Fail(Error::Syntax);
    const Error error = mTokens.Failure();
    if (error != Error::None) code.resize(start);
    return error;
}

bool Parser::IsSign(char sign) const {
    return mTokens.Current().kind == TokenKind::Sign && mTokens.Current().sign == sign;
}

bool Parser::IsWord(std::string_view word) const {
    return mTokens.Current().kind == TokenKind::Word && mTokens.Current().text == word;
}

bool Parser::TakeSign(char sign) {
    if (!IsSign(sign)) return false;
    mTokens.Next();
    return true;
}

bool Parser::TakeWord(std::string_view word) {
    if (!IsWord(word)) return false;
    mTokens.Next();
    return true;
}

void Parser::ExpectSign(char sign) {
    if (!TakeSign(sign)) Fail(Error::Syntax);
}

void Parser::ExpectWord(std::string_view word) {
    if (!TakeWord(word)) Fail(Error::Syntax);
}

bool Parser::AtStatementEnd() const {
    return AtEnd() || IsSign(':') || IsSign('\'') || IsWord("ELSE");
}

void Parser::ReadStatements() {
    while (!AtEnd() && !IsWord("ELSE")) {
        if (TakeSign(':')) continue;
        ReadStatement();
        if (!AtStatementEnd()) return Fail(Error::Syntax);
    }
}

void Parser::ReadStatement() {
    if (IsWord("IF")) return ReadIf();
    Statement statement;
    statement.line = mLine;
    if (TakeSign('?')) {
        statement.row = FindStatement("PRINT");
    } else if (TakeSign('\'')) {
        statement.row = FindStatement("REM");
    } else if (mTokens.Current().kind != TokenKind::Word) {
        return Fail(Error::Syntax);
    } else {
        const std::string name = mTokens.Current().text;
        mTokens.Next();
        const bool wordFollows = mTokens.Current().kind == TokenKind::Word;
        statement.row = FindStatement(name, wordFollows ? mTokens.Current().text : std::string());
        if (statement.row == nullptr) {
            statement.row = FindStatement("LET");
            ReadAssignment(statement, name);
            mCode->push_back(std::move(statement));
            return;
        }
        if (statement.row->words.size() > name.size()) mTokens.Next();
    }
    const StatementRow& row = *statement.row;
    if (row.parse != nullptr) {
        (this->*row.parse)(statement);
    } else {
        ReadArguments(statement, row.args);
    }
    mCode->push_back(std::move(statement));
}

void Parser::ReadArguments(Statement& statement, std::string_view pattern) {
    bool first = true;
    bool optional = false;
    for (const char kind : pattern) {
        if (kind == '?') {
            optional = true;
            continue;
        }
        const bool ends = AtStatementEnd() || IsSign(')');
        const bool present = first ? !ends : TakeSign(',');
        if (present) {
            ReadArgument(statement, kind);
        } else if (optional) {
            if (kind == 's' || kind == 'n') statement.args.emplace_back();
        } else {
            return Fail(Error::Syntax);
        }
        first = false;
    }
}

void Parser::ReadArgument(Statement& statement, char kind) {
    if (kind != 's' && kind != 'n') {
        ExpectWord(std::string_view(&kind, 1));
        statement.number = 1;
        return;
    }
    // An argument between two commas that is left out takes its default.
    if (IsSign(',')) {
        statement.args.emplace_back();
        return;
    }
    statement.args.push_back(kind == 's' ? ReadTextExpression() : ReadNumberExpression());
}

void Parser::ReadIf() {
    if (++mDepth > DeepestIf) return Fail(Error::NestingTooDeep);
    mTokens.Next();
    Statement statement;
    statement.line = mLine;
    statement.row = FindStatement("IF");
    statement.args.push_back(ReadNumberExpression());
    const std::size_t at = mCode->size();
    mCode->push_back(std::move(statement));
    if (!IsWord("GOTO")) ExpectWord("THEN");
    ReadBranch();
    if (TakeWord("ELSE")) {
        Statement jump;
        jump.line = mLine;
        jump.row = FindStatement("ELSE"); // jumps over what follows it
        const std::size_t jumpAt = mCode->size();
        mCode->push_back(std::move(jump));
        (*mCode)[at].jump = mCode->size();
        ReadBranch();
        (*mCode)[jumpAt].jump = mCode->size();
    } else {
        (*mCode)[at].jump = mCode->size();
    }
    --mDepth;
}

void Parser::ReadBranch() {
    if (mTokens.Current().kind != TokenKind::Number) return ReadStatements();
    Statement statement;
    statement.line = mLine;
    statement.row = FindStatement("GOTO");
    statement.number = ReadLineNumber();
    mCode->push_back(std::move(statement));
}

int Parser::ReadLineNumber() {
    const Token& token = mTokens.Current();
    if (token.kind != TokenKind::Number) {
        Fail(Error::Syntax);
        return NoLine;
    }
    const double number = token.number;
    if (number < 0 || number > LargestLineNumber || number != static_cast<int>(number)) {
        Fail(Error::LineNumber);
        return NoLine;
    }
    mTokens.Next();
    return static_cast<int>(number);
}

void Parser::ReadAssignment(Statement& statement, std::string_view name) {
    if (IsReserved(name) || FindFunction(name) != nullptr) return Fail(Error::Syntax);
    Expr target = ReadVariable(name);
    ExpectSign('=');
    Expr value = ReadExpression();
    if (mTokens.Failure() != Error::None) return;
    Require(value, target.IsText() ? 's' : 'n');
    statement.args.push_back(std::move(target));
    statement.args.push_back(std::move(value));
}

void Parser::ReadLet(Statement& statement) {
    if (mTokens.Current().kind != TokenKind::Word) return Fail(Error::Syntax);
    const std::string name = mTokens.Current().text;
    mTokens.Next();
    statement.row = FindStatement("LET");
    ReadAssignment(statement, name);
}

void Parser::ReadFileNumber(Statement& statement) {
    statement.args.push_back(ReadNumberExpression());
}

void Parser::ReadVariables(Statement& statement) {
    do {
        if (mTokens.Current().kind != TokenKind::Word) return Fail(Error::Syntax);
        const std::string name = mTokens.Current().text;
        mTokens.Next();
        if (IsReserved(name) || FindFunction(name) != nullptr) return Fail(Error::Syntax);
        statement.args.push_back(ReadVariable(name));
    } while (TakeSign(','));
}

} // namespace qnsim
