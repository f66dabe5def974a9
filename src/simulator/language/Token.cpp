#include "language/Token.h"

#include "Text.h"
#include "language/Words.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace qnsim {
namespace {

bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace

void Lexer::Stop(Error error) {
    if (mError == Error::None) mError = error;
    mAt = mLine.size();
    mToken.kind = TokenKind::End;
}

std::string_view Lexer::TakeRest() {
    mError = Error::None; // what was read ahead need not be a token
    const std::string_view rest = mLine.substr(mToken.begin);
    mAt = mLine.size();
    mToken = {};
    mToken.begin = mAt;
    return rest;
}

void Lexer::RereadAsItem() {
    mError = Error::None; // as above
    mAt = mToken.begin;
    if (mAt < mLine.size() && mLine[mAt] == '"') return ReadText();
    const std::size_t end = std::min(mLine.find_first_of(",:", mAt), mLine.size());
    mToken.kind = TokenKind::Item;
    mToken.text = Trim(mLine.substr(mAt, end - mAt));
    mAt = end;
}

void Lexer::Next() {
    while (mAt < mLine.size() && (mLine[mAt] == ' ' || mLine[mAt] == '\t'))
        ++mAt;
    mToken.kind = TokenKind::End;
    mToken.begin = mAt;
    if (mAt == mLine.size()) return;
    const char c = mLine[mAt];
    if (IsLetter(c)) return ReadWord();
    if (c == '"') return ReadText();
    const bool pointed = c == '.' && mAt + 1 < mLine.size() && IsDigit(mLine[mAt + 1]);
    if (IsDigit(c) || pointed) return ReadNumber();
    if (c == '&') return ReadHex();
    ReadSign();
}

void Lexer::ReadNumber() {
    const char* begin = mLine.data() + mAt;
    const auto result = std::from_chars(begin, mLine.data() + mLine.size(), mToken.number);
    if (result.ec != std::errc() || !std::isfinite(mToken.number)) return Stop(Error::Overflow);
    mAt += static_cast<std::size_t>(result.ptr - begin);
    mToken.kind = TokenKind::Number;
}

void Lexer::ReadHex() {
    if (mAt + 1 >= mLine.size() || UpperChar(mLine[mAt + 1]) != 'H') return Stop(Error::Syntax);
    unsigned value = 0;
    const char* begin = mLine.data() + mAt + 2;
    const auto result = std::from_chars(begin, mLine.data() + mLine.size(), value, 16);
    if (result.ec != std::errc()) return Stop(Error::Syntax);
    mAt += 2 + static_cast<std::size_t>(result.ptr - begin);
    mToken.kind = TokenKind::Number;
    mToken.number = value;
}

void Lexer::ReadText() {
    // A line's end closes a text that lacks its second quote.
    const auto end = mLine.find('"', mAt + 1);
    mToken.kind = TokenKind::Text;
    mToken.text = mLine.substr(mAt + 1, end == std::string_view::npos ? end : end - mAt - 1);
    mAt = end == std::string_view::npos ? mLine.size() : end + 1;
}

void Lexer::ReadWord() {
    std::size_t end = mAt;
    while (end < mLine.size() && IsLetter(mLine[end]))
        ++end;
    const bool reserved = IsReserved(Upper(mLine.substr(mAt, end - mAt)));
    while (!reserved && end < mLine.size() && (IsLetter(mLine[end]) || IsDigit(mLine[end])))
        ++end;
    const char next = end < mLine.size() ? mLine[end] : '\0';
    const bool file = next == '&' && Upper(mLine.substr(mAt, end - mAt)) == "FILE";
    if (next == '$' || next == '%' || file) ++end;
    mToken.kind = TokenKind::Word;
    mToken.text = Upper(mLine.substr(mAt, end - mAt));
    mAt = end;
}

void Lexer::ReadSign() {
    const char c = mLine[mAt++];
    const char next = mAt < mLine.size() ? mLine[mAt] : '\0';
    mToken.kind = TokenKind::Sign;
    mToken.sign = c;
    if (c == '<' && next == '>') mToken.sign = SignNotEqual;
    if (c == '<' && next == '=') mToken.sign = SignLessEqual;
    if (c == '>' && next == '=') mToken.sign = SignGreaterEqual;
    if (mToken.sign != c) ++mAt;
    constexpr std::string_view signs = "+-*/^()=<>,;:#?'\\";
    if (signs.find(c) == std::string_view::npos) Stop(Error::Syntax);
}

} // namespace qnsim
