#pragma once

// What a line of Quorin becomes when it has been read: expressions as trees, statements as a flat
// list with jumps.

#include <cstddef>
#include <string>
#include <vector>

namespace qnsim {

struct FunctionRow;
struct StatementRow;

enum class Node {
    Absent, ///< an argument that was left out
    Number,
    Text,
    NumberVariable,
    TextVariable,
    NumberArray, ///< args: the index
    TextArray,
    SystemVariable, ///< args: the number
    NumberCall,     ///< function: which
    TextCall,
    Add,
    Subtract,
    Multiply,
    Divide,
    WholeDivide,
    Modulo,
    Power,
    Negate,
    Not,
    And,
    Or,
    Xor,
    Compare, ///< sign: the comparison
    CompareText,
    Join,
};

struct Expr {
    Node node = Node::Absent;
    char sign = 0;                         ///< Compare, CompareText
    bool whole = false;                    ///< a variable that holds whole numbers only
    int slot = 0;                          ///< variables: where it is kept
    const FunctionRow* function = nullptr; ///< calls: its row in the table of functions
    int depth = 1;                         ///< height of the tree, which a limit holds down
    double number = 0;
    std::string text; ///< Text, and an item of DATA as it was written
    std::vector<Expr> args;

    bool IsText() const {
        return node == Node::Text || node == Node::TextVariable || node == Node::TextArray
               || node == Node::TextCall || node == Node::Join;
    }
    bool IsPresent() const { return node != Node::Absent; }
};

constexpr int NoLine = 0; ///< the line number of a statement that was typed without one

struct Statement {
    const StatementRow* row = nullptr; ///< its row in the table of statements
    int line = NoLine;                 ///< the program line it stands in
    std::size_t jump = 0;              ///< If, Jump: index in the list; others: unused
    int number = 0;                    ///< a line number, a mode or a flag, as the statement needs
    int number2 = 0;
    std::string text;       ///< separators of PRINT, a name, a rest of the line
    std::vector<int> lines; ///< line numbers to choose from
    std::vector<Expr> args;
};

using Code = std::vector<Statement>;

} // namespace qnsim
