#pragma once

// The words of the language: one table of statements, one of functions, and the words between them.

#include <span>
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

/// The row of a statement that begins with these words, null when none does. Rows live as long as
/// the program.
const StatementRow* FindStatement(std::string_view first, std::string_view second = {});
std::span<const StatementRow> AllStatements();

struct FunctionRow {
    std::string_view name;
    std::string_view args; ///< "n", "s", "?" as above; empty = used without parentheses
    double (Evaluator::*number)(const Expr&);
    std::string (Evaluator::*text)(const Expr&);
};

/// The row of a function of that name (upper case, with its "$"), null when there is none.
const FunctionRow* FindFunction(std::string_view name);
std::span<const FunctionRow> AllFunctions();

/// A word that no variable may have as its name and that ends where a digit begins.
bool IsReserved(std::string_view word);

} // namespace qnsim
