#pragma once

// Reads one line of Quorin into statements.

#include "language/Ast.h"
#include "language/Token.h"
#include "language/Variables.h"

#include <string_view>

namespace qnsim {

/// A line is read whole or not at all: after an error the caller drops what was appended. Reading
/// never fails by nesting: expressions and IFs have a limit and an error of their own.
class Parser {
  public:
    /// line is the number that the line's statements carry.
    Parser(std::string_view text, int line, Variables& variables);

    /// Appends the line's statements to the code.
    Error Read(Code& code);

    /// The statements that have a form of their own; called through the statement table.
    void ReadPrint(Statement& statement);
    void ReadInput(Statement& statement);
    void ReadLineInput(Statement& statement);
    void ReadRemark(Statement& statement);
    void ReadGoto(Statement& statement);
    void ReadOn(Statement& statement);
    void ReadFor(Statement& statement);
    void ReadNext(Statement& statement);
    void ReadLet(Statement& statement);
    void ReadDim(Statement& statement);
    void ReadOpen(Statement& statement);
    void ReadClose(Statement& statement);
    void ReadList(Statement& statement);
    void ReadResume(Statement& statement);
    void ReadOnOff(Statement& statement);
    void ReadLooseText(Statement& statement);
    void ReadData(Statement& statement);
    void ReadVariables(Statement& statement);
    void ReadRestore(Statement& statement);

  private:
    void ReadStatements();
    void ReadStatement();
    void ReadIf();
    void ReadBranch();
    void ReadAssignment(Statement& statement, std::string_view name);
    void ReadArguments(Statement& statement, std::string_view pattern);
    void ReadArgument(Statement& statement, char kind);
    void ReadFileNumber(Statement& statement);
    int ReadLineNumber();
    Expr ReadVariable(std::string_view name);

    Expr ReadExpression(int level = 0);
    Expr ReadUnary();
    Expr ReadPrimary();
    Expr ReadWordValue();
    Expr ReadCall(const FunctionRow& function);
    Expr ReadNumberExpression();
    Expr ReadTextExpression();
    Expr Combine(Node node, char sign, Expr left, Expr right);
    void Require(const Expr& expr, char kind);

    bool AtEnd() const { return mTokens.Current().kind == TokenKind::End; }
    bool AtStatementEnd() const;
    bool IsSign(char sign) const;
    bool IsWord(std::string_view word) const;
    bool TakeSign(char sign);
    bool TakeWord(std::string_view word);
    void ExpectSign(char sign);
    void ExpectWord(std::string_view word);
    void Fail(Error error) { mTokens.Stop(error); }
    int Slot(int slot);

    Lexer mTokens;
    int mLine;
    Variables& mVariables;
    Code* mCode = nullptr;
    int mDepth = 0;
};

/// Takes a line number off the front of a line: the number, or -1 when it has none; text is then
/// what follows it.
int TakeLineNumber(std::string_view& text);

constexpr int LargestLineNumber = 65535;
constexpr std::size_t LongestLine = 1024;

} // namespace qnsim
