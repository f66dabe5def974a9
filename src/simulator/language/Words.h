#pragma once

// The words of the language: one table of statements, one of functions, and the words between them.

#include <string>
#include <string_view>

namespace qnsim {

class Interpreter;
class Parser;
class Evaluator;
struct Expr;
struct Statement;

/// One statement. Its arguments are read by the argument pattern ("s" text, "n" number, "?" before
/// an argument that may be left out, a capital letter for itself), or by a function of the parser
/// when they have a form of their own.
struct StatementRow {
    std::string_view words; ///< one word or two
    std::string_view args;
    void (Parser::*parse)(Statement&);
    void (Interpreter::*run)(const Statement&);
};

/// The row of a statement that begins with these words, or -1. The second word may be empty.
int FindStatement(std::string_view first, std::string_view second);
const StatementRow& StatementAt(int row);
int StatementCount();

/// Rows that the parser itself makes.
int AssignRow();
int IfRow();
int JumpRow();
int GotoRow();

struct FunctionRow {
    std::string_view name;
    std::string_view args; ///< "n", "s", "?" as above; empty = used without parentheses
    double (Evaluator::*number)(const Expr&);
    std::string (Evaluator::*text)(const Expr&);
};

/// The row of a function of that name (upper case, with its "$"), or -1.
int FindFunction(std::string_view name);
const FunctionRow& FunctionAt(int row);
int FunctionCount();

/// A word that no variable may have as its name and that ends where a digit begins.
bool IsReserved(std::string_view word);

} // namespace qnsim
