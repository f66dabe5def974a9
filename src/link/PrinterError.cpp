#include "PrinterError.h"

#include "common/Numbers.h"
#include "common/Text.h"

namespace qncomm {
namespace {

std::int32_t ListLine(std::string_view line) {
    constexpr std::string_view marker = "in line";
    const std::size_t at = line.find(marker);
    const std::size_t colon = line.find(':');
    if (at == std::string_view::npos) return 0;
    const std::size_t from = at + marker.size() + 1;
    if (colon == std::string_view::npos || colon < from) return 0;
    return ToInt32(Val(line.substr(from, colon - from)));
}

} // namespace

PrinterError ParsePrinterError(std::string_view line) {
    constexpr std::string_view marker = "Error";
    const std::size_t at = line.find(marker);
    if (at == std::string_view::npos) return {};
    const std::size_t from = at + marker.size();
    const std::size_t colon = line.find(':', from + 1);
    if (colon == std::string_view::npos) return {};
    PrinterError error;
    error.number = ToInt32(Val(Trim(line.substr(from, colon - from))));
    error.description = Trim(line.substr(colon + 1));
    const std::int32_t listLine = ListLine(line);
    if (listLine >= 1) error.description += " (List line " + ToText(listLine) + ")";
    return error;
}

} // namespace qncomm
