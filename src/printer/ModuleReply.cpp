#include "printer/ModuleReply.h"

#include "common/Numbers.h"
#include "common/Text.h"

#include <cstddef>

namespace qncomm {
namespace {

constexpr std::string_view ErrorWord = "Error";
constexpr std::string_view InLineWords = "in line";

std::int32_t WholeNumber(std::string_view text) {
    return ToInt32(Val(Trim(text)));
}

} // namespace

std::optional<clsQNModuleError> ParseModuleError(std::string_view sLine) {
    constexpr auto absent = std::string_view::npos;
    const std::size_t error = sLine.find(ErrorWord);
    if (error == absent) return std::nullopt;
    const std::size_t codeAt = error + ErrorWord.size();
    const std::size_t inLine = sLine.find(InLineWords, codeAt + 1);
    if (inLine == absent) return std::nullopt;
    const std::size_t lineAt = inLine + InLineWords.size();
    const std::size_t colon = sLine.find(':', lineAt);
    if (colon == absent) return std::nullopt;

    clsQNModuleError found;
    found.QNErrCode = WholeNumber(sLine.substr(codeAt, inLine - codeAt));
    if (found.QNErrCode == 0) return std::nullopt;
    found.QNErrInLine = WholeNumber(sLine.substr(lineAt, colon - lineAt));
    if (found.QNErrInLine == 0) return std::nullopt;
    found.QNErrDesc = Trim(sLine.substr(colon + 1));
    return found;
}

} // namespace qncomm
