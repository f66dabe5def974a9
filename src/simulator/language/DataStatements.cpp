// Values that stand in the program.
#include "language/Interpreter.h"
#include "language/Words.h"

namespace qnsim {

const Expr* Interpreter::NextItem() {
    const StatementRow* dataRow = FindStatement("DATA");
    for (; mReading.statement < mProgramCode.size(); mReading = {mReading.statement + 1, 0}) {
        const Statement& statement = mProgramCode[mReading.statement];
        if (statement.row == dataRow && mReading.item < statement.args.size())
            return &statement.args[mReading.item];
    }
    return nullptr;
}

void Interpreter::Read(const Statement& statement) {
    if (!Link()) return;
    for (const Expr& variable : statement.args) {
        const Expr* item = NextItem();
        if (item == nullptr) return Fail(Error::OutOfData);
        if (variable.IsText()) {
            mEvaluator.AssignText(variable, item->text);
        } else if (item->node == Node::Number) {
            mEvaluator.AssignNumber(variable, item->number);
        } else {
            Fail(Error::TypeMismatch);
        }
        // An item that did not fit is there to be read again, into another variable.
        if (mEvaluator.Failure() != Error::None) return;
        ++mReading.item;
    }
}

void Interpreter::Restore(const Statement& statement) {
    if (!Link()) return;
    mReading = {};
    if (statement.lines.empty()) return;
    const auto line = mLineStarts.find(statement.lines.front());
    if (line == mLineStarts.end()) return Fail(Error::UndefinedLine);
    mReading.statement = line->second;
}

} // namespace qnsim
