#pragma once

// The words, numbers, texts and signs that a line of Quorin is made of.

#include "Errors.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace qnsim {

enum class TokenKind { End, Number, Text, Word, Sign, Item };

/// Signs of two characters are held as one letter of their own.
constexpr char SignNotEqual = 'n';
constexpr char SignLessEqual = 'l';
constexpr char SignGreaterEqual = 'g';

struct Token {
    TokenKind kind = TokenKind::End;
    char sign = 0;     ///< Sign: the character, or one of the three above
    double number = 0; ///< Number
    std::string text;  ///< Text: without its quotes. Word: upper case, with its "$", "%" or "&".
                       ///< Item: as written
    std::size_t begin = 0; ///< where it starts in the line
};

/// Reads tokens from one line. A word that the language reserves ends before a digit (PRINT#1,
/// PP10,20, CLOSE68); any other name may hold digits.
class Lexer {
  public:
    explicit Lexer(std::string_view line) : mLine(line) { Next(); }

    const Token& Current() const { return mToken; }
    void Next();
    /// The rest of the line from the current token on, and the end of reading.
    std::string_view TakeRest();
    /// Reads the current token again as an item of DATA: a text in quotes, or all up to the next
    /// comma or colon.
    void RereadAsItem();
    /// What was wrong with the line's characters, or None.
    Error Failure() const { return mError; }
    /// Ends reading: everything after is End.
    void Stop(Error error);

  private:
    void ReadNumber();
    void ReadHex();
    void ReadText();
    void ReadWord();
    void ReadSign();

    std::string_view mLine;
    std::size_t mAt = 0;
    Token mToken;
    Error mError = Error::None;
};

} // namespace qnsim
