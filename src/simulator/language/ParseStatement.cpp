// The statements that have a form of their own.
#include "language/Parser.h"

#include "Text.h"
#include "language/Words.h"

namespace qnsim {

void Parser::ReadPrint(Statement& statement) {
    // The first argument is the file number; absent = the console. The text holds the separator
    // after each item.
    if (TakeSign('#')) {
        ReadFileNumber(statement);
        if (!TakeSign(',') && !AtStatementEnd()) return Fail(Error::Syntax);
    } else {
        statement.args.emplace_back();
    }
    while (!AtStatementEnd()) {
        if (IsSign(';') || IsSign(',')) {
            statement.args.emplace_back();
        } else {
            statement.args.push_back(ReadExpression());
        }
        char separator = ' ';
        if (IsSign(';') || IsSign(',')) {
            separator = mTokens.Current().sign;
            mTokens.Next();
        }
        statement.text += separator;
    }
}

void Parser::ReadInput(Statement& statement) {
    if (TakeSign('#')) {
        ReadFileNumber(statement);
        ExpectSign(',');
    } else {
        statement.args.emplace_back();
        statement.text = "? ";
        if (mTokens.Current().kind == TokenKind::Text) {
            statement.text = mTokens.Current().text;
            mTokens.Next();
            if (!TakeSign(',')) ExpectSign(';');
        }
    }
    ReadVariables(statement);
}

void Parser::ReadLineInput(Statement& statement) {
    statement.number = 1;
    ReadInput(statement);
    if (statement.args.size() != 2 || !statement.args.back().IsText()) Fail(Error::Syntax);
}

void Parser::ReadRemark(Statement& statement) {
    statement.text = mTokens.TakeRest();
}

void Parser::ReadGoto(Statement& statement) {
    statement.number = ReadLineNumber();
}

void Parser::ReadOn(Statement& statement) {
    if (TakeWord("ERROR")) {
        ExpectWord("GOTO");
        statement.number2 = 1;
        statement.number = ReadLineNumber();
        return;
    }
    statement.args.push_back(ReadNumberExpression());
    statement.number = IsWord("GOSUB") ? 1 : 0;
    if (!TakeWord("GOSUB")) ExpectWord("GOTO");
    do {
        statement.lines.push_back(ReadLineNumber());
    } while (TakeSign(','));
}

void Parser::ReadFor(Statement& statement) {
    ReadLet(statement);
    statement.row = FindStatement("FOR");
    if (statement.args.empty() || statement.args.front().node != Node::NumberVariable)
        return Fail(Error::Syntax);
    ExpectWord("TO");
    statement.args.push_back(ReadNumberExpression());
    statement.args.emplace_back();
    if (TakeWord("STEP")) statement.args.back() = ReadNumberExpression();
}

void Parser::ReadNext(Statement& statement) {
    statement.number = Variables::NoSlot;
    if (AtStatementEnd()) return;
    ReadVariables(statement);
    if (statement.args.size() != 1 || statement.args.front().node != Node::NumberVariable)
        return Fail(Error::Syntax);
    statement.number = statement.args.front().slot;
    statement.args.clear();
}

void Parser::ReadDim(Statement& statement) {
    ReadVariables(statement);
    for (const Expr& variable : statement.args) {
        if (variable.node != Node::NumberArray && variable.node != Node::TextArray)
            Fail(Error::Syntax);
    }
}

void Parser::ReadOpen(Statement& statement) {
    statement.args.push_back(ReadTextExpression());
    ExpectWord("FOR");
    if (TakeWord("INPUT")) {
        statement.number = 'I';
    } else if (TakeWord("APPEND")) {
        statement.number = 'A';
    } else {
        ExpectWord("OUTPUT");
        statement.number = 'O';
    }
    ExpectWord("AS");
    TakeSign('#');
    ReadFileNumber(statement);
}

void Parser::ReadClose(Statement& statement) {
    if (AtStatementEnd()) return;
    do {
        TakeSign('#');
        ReadFileNumber(statement);
    } while (TakeSign(','));
}

void Parser::ReadList(Statement& statement) {
    // LIST, LIST 10, LIST 10-, LIST -20, LIST 10-20
    statement.number = 0;
    statement.number2 = LargestLineNumber;
    if (AtStatementEnd()) return;
    if (mTokens.Current().kind == TokenKind::Number) {
        statement.number = ReadLineNumber();
        statement.number2 = statement.number;
    }
    if (!TakeSign('-')) return;
    statement.number2 = AtStatementEnd() ? LargestLineNumber : ReadLineNumber();
}

void Parser::ReadResume(Statement& statement) {
    // number2: 0 the failed statement again, 1 the one after it, 2 a line
    if (TakeWord("NEXT")) {
        statement.number2 = 1;
    } else if (!AtStatementEnd()) {
        statement.number2 = 2;
        statement.number = ReadLineNumber();
    }
}

void Parser::ReadOnOff(Statement& statement) {
    statement.number = IsWord("ON") ? 1 : 0;
    if (!TakeWord("ON")) ExpectWord("OFF");
}

void Parser::ReadLooseText(Statement& statement) {
    // A text or a number to print on the label.
    statement.args.push_back(ReadExpression());
}

void Parser::ReadData(Statement& statement) {
    // A number keeps its text, for a text variable that reads it.
    do {
        mTokens.RereadAsItem();
        const Token& token = mTokens.Current();
        Expr& item = statement.args.emplace_back();
        item.text = token.text;
        const bool quoted = token.kind == TokenKind::Text;
        const auto number = quoted ? std::nullopt : WholeTextNumber(token.text);
        item.node = number ? Node::Number : Node::Text;
        item.number = number.value_or(0);
        mTokens.Next();
    } while (TakeSign(','));
}

void Parser::ReadRestore(Statement& statement) {
    if (!AtStatementEnd()) statement.lines.push_back(ReadLineNumber());
}

} // namespace qnsim
