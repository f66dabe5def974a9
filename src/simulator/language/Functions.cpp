// The functions of the language.
#include "Text.h"
#include "language/Evaluator.h"

#include <array>
#include <charconv>
#include <cmath>

namespace qnsim {
namespace {

constexpr int LargestCount = 32767;

} // namespace

double Evaluator::Absolute(const Expr& call) {
    return std::abs(Number(call.args[0]));
}

double Evaluator::Ascii(const Expr& call) {
    const std::string text = Text(call.args[0]);
    if (!text.empty()) return static_cast<unsigned char>(text.front());
    Fail(Error::IllegalArgument);
    return 0;
}

double Evaluator::WholePart(const Expr& call) {
    return std::floor(Number(call.args[0]));
}

double Evaluator::SignOf(const Expr& call) {
    const double value = Number(call.args[0]);
    const int above = value > 0 ? 1 : 0;
    return value < 0 ? -1 : above;
}

double Evaluator::SquareRoot(const Expr& call) {
    const double value = Number(call.args[0]);
    if (value >= 0) return std::sqrt(value);
    Fail(Error::IllegalArgument);
    return 0;
}

double Evaluator::Length(const Expr& call) {
    return static_cast<double>(Text(call.args[0]).size());
}

double Evaluator::Value(const Expr& call) {
    return TextNumber(Text(call.args[0]));
}

double Evaluator::Position(const Expr& call) {
    const std::string text = Text(call.args[0]);
    const auto at = text.find(Text(call.args[1]));
    return at == std::string::npos ? 0 : static_cast<double>(at + 1);
}

double Evaluator::Free(const Expr& call) {
    Number(call.args[0]);
    return static_cast<double>(FreeMemory());
}

double Evaluator::ErrorNumber(const Expr& /*call*/) {
    return mLastError;
}

double Evaluator::ErrorLine(const Expr& /*call*/) {
    return mLastErrorLine;
}

double Evaluator::Random(const Expr& call) {
    const int limit = Whole(call.args[0], 1, 1'000'000, 1);
    mRandom = mRandom * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>((mRandom >> 33U) % static_cast<std::uint64_t>(limit));
}

std::string Evaluator::Character(const Expr& call) {
    return std::string(1, static_cast<char>(Whole(call.args[0], 0, 255)));
}

std::string Evaluator::NumberToText(const Expr& call) {
    return NumberText(Number(call.args[0]));
}

std::string Evaluator::Left(const Expr& call) {
    std::string text = Text(call.args[0]);
    const auto count = static_cast<std::size_t>(Whole(call.args[1], 0, LargestCount));
    if (count < text.size()) text.resize(count);
    return text;
}

std::string Evaluator::Right(const Expr& call) {
    const std::string text = Text(call.args[0]);
    const auto count = static_cast<std::size_t>(Whole(call.args[1], 0, LargestCount));
    return count < text.size() ? text.substr(text.size() - count) : text;
}

std::string Evaluator::Middle(const Expr& call) {
    const std::string text = Text(call.args[0]);
    const auto first = static_cast<std::size_t>(Whole(call.args[1], 1, LargestCount, 1)) - 1;
    const int count = Whole(call.args[2], 0, LargestCount, LargestCount);
    return first < text.size() ? text.substr(first, static_cast<std::size_t>(count))
                               : std::string();
}

std::string Evaluator::Spaces(const Expr& call) {
    return std::string(static_cast<std::size_t>(Whole(call.args[0], 0, LargestCount)), ' ');
}

std::string Evaluator::Repeat(const Expr& call) {
    const auto count = static_cast<std::size_t>(Whole(call.args[0], 0, LargestCount));
    const std::string text = Text(call.args[1]);
    return text.empty() ? std::string() : std::string(count, text.front());
}

std::string Evaluator::UpperCase(const Expr& call) {
    return Upper(Text(call.args[0]));
}

std::string Evaluator::Version(const Expr& call) {
    return Whole(call.args[0], 0, 1) == 0 ? mMachine.version : std::string(mMachine.model.code);
}

std::string Evaluator::Hex(const Expr& call) {
    std::array<char, 20> buffer{};
    const std::int64_t bits = ToBits(Number(call.args[0]));
    const auto result =
        std::to_chars(buffer.begin(), buffer.end(), static_cast<std::uint32_t>(bits), 16);
    return Upper({buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data())});
}

} // namespace qnsim
