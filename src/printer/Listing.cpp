#include "printer/Listing.h"

#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/Text.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace qncomm {
namespace {

/// More fields than any row has: a row with too many is told by its count.
constexpr std::size_t MostFields = 11;

/// A row's fields when it holds one entry or two of fieldsEach fields each.
std::optional<std::vector<std::string>> RowFields(std::string_view line, std::size_t fieldsEach) {
    std::vector<std::string> fields = SplitAtBlankRuns(Trim(line), MostFields);
    if (fields.front().empty()) return std::nullopt;
    if (fields.size() != fieldsEach && fields.size() != 2 * fieldsEach) return std::nullopt;
    return fields;
}

std::optional<std::int32_t> SizeOf(std::string_view field) {
    try {
        return ToInt32(Val(field));
    } catch (const QNError&) {
        return std::nullopt;
    }
}

/// A count of bytes; one beyond 32 bits, as a large card has it, is the largest of them.
std::int32_t CountOf(std::string_view text) {
    constexpr std::numeric_limits<std::int32_t> whole;
    return ToInt32(std::clamp<double>(Val(Trim(text)), whole.min(), whole.max()));
}

} // namespace

std::optional<std::vector<clsPrinterFile>> ParseFileRow(std::string_view sLine) {
    const auto fields = RowFields(sLine, 2);
    if (!fields) return std::nullopt;
    std::vector<clsPrinterFile> files;
    for (std::size_t i = 0; i < fields->size(); i += 2)
        if (const auto size = SizeOf((*fields)[i + 1]))
            files.push_back({Trim((*fields)[i]), *size});
    return files;
}

std::optional<std::vector<clsPrinterFile>> ParseFontRow(std::string_view sLine) {
    const auto fields = RowFields(sLine, 1);
    if (!fields) return std::nullopt;
    std::vector<clsPrinterFile> fonts;
    for (const std::string& field : *fields)
        fonts.push_back({Trim(field), 0});
    return fonts;
}

ByteCounts ParseByteCounts(std::string_view sLine) {
    const std::string line = UpperCase(sLine);
    ByteCounts counts;
    const std::size_t free = line.find("BYTES FREE");
    if (free != std::string::npos) counts.free = CountOf(std::string_view(line).substr(0, free));
    const std::size_t blank = line.find(' ', line.find("FREE"));
    const std::size_t used = line.find("BYTES USED");
    if (blank < used && used != std::string::npos)
        counts.used = CountOf(std::string_view(line).substr(blank, used - blank));
    return counts;
}

std::optional<std::string> ParseDeviceWord(std::string_view sLine) {
    const std::size_t colon = sLine.find(':');
    if (colon == std::string_view::npos) return std::nullopt;
    const std::string_view upTo = sLine.substr(0, colon + 1);
    return std::string(upTo.substr(upTo.rfind(' ') + 1));
}

std::string ParseVersionNumber(std::string_view sText) {
    const std::size_t first = sText.find_first_of("0123456789");
    if (first == std::string_view::npos) return {};
    const std::size_t end = sText.find_first_not_of("0123456789.", first);
    return std::string(sText.substr(first, end - first));
}

} // namespace qncomm
