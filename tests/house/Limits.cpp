#include "Limits.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <regex>

namespace qncomm::testing {
namespace {

struct Unit {
    std::string_view word;
    std::uint64_t size;
};

constexpr std::array Units{Unit{"KiB", std::uint64_t{1} << 10U},
                           Unit{"MiB", std::uint64_t{1} << 20U},
                           Unit{"GiB", std::uint64_t{1} << 30U}};

/// What a second is in the unit that a constant's name ends in.
std::uint64_t SecondIn(std::string_view name) {
    return name.ends_with("Us") ? 1'000'000 : 1000;
}

std::uint64_t SizeOf(std::string_view unit, std::string_view name) {
    if (unit == "s") return SecondIn(name);
    const auto* const found = std::ranges::find(Units, unit, &Unit::word);
    return found == Units.end() ? 1 : found->size;
}

/// The number of some digits, whatever parts them; nothing for none.
std::optional<std::uint64_t> NumberOf(std::string_view text) {
    std::string digits;
    std::ranges::copy_if(text, std::back_inserter(digits),
                         [](unsigned char c) { return std::isdigit(c) != 0; });
    if (digits.empty()) return std::nullopt;
    return std::stoull(digits);
}

using Matches = std::vector<std::smatch>;
Matches All(const std::string& text, const std::regex& what) {
    return {std::sregex_iterator(text.begin(), text.end(), what), std::sregex_iterator()};
}

void AddRow(const std::string& amounts, const std::string& names,
            std::vector<StatedLimit>& limits) {
    static const std::regex amount(R"(([0-9][0-9,]*)\s*([A-Za-z]*))");
    static const std::regex name("`(\\w+)`");
    const Matches values = All(amounts, amount);
    const Matches named = All(names, name);
    for (std::size_t i = 0; i < std::max(values.size(), named.size()); ++i) {
        StatedLimit limit;
        if (i < named.size()) limit.name = named[i].str(1);
        if (i < values.size())
            limit.amount =
                NumberOf(values[i].str(1)).value_or(0) * SizeOf(values[i].str(2), limit.name);
        limits.push_back(std::move(limit));
    }
}

/// The value of a product or shift of whole numbers.
std::optional<std::uint64_t> ValueOf(const std::string& expression) {
    static const std::regex term(R"(^\s*(\*|<<)?\s*(?:std::u?int\d*_t|std::size_t)?\s*[({]?\s*)"
                                 R"(([0-9][0-9']*)(?:U|L)*\s*[)}]?)");
    std::string left = expression;
    std::optional<std::uint64_t> value;
    std::smatch found;
    while (std::regex_search(left, found, term)) {
        const std::uint64_t number = NumberOf(found.str(2)).value_or(0);
        if (value.has_value() != found[1].matched) return std::nullopt;
        value = !value ? number : found.str(1) == "*" ? *value * number : *value << number;
        left = found.suffix();
    }
    const bool whole = left.find_first_not_of(' ') == std::string::npos;
    return whole ? value : std::nullopt;
}

} // namespace

std::vector<StatedLimit> StatedLimits(std::string_view sDocument) {
    std::vector<StatedLimit> limits;
    std::string table(sDocument.substr(std::min(sDocument.find("\n## Limits"), sDocument.size())));
    table.resize(std::min(table.find("\n## ", 1), table.size()));
    static const std::regex row(R"(\n\|[^|\n]*\|([^|\n]*)\|([^|\n]*)\|)");
    for (const std::smatch& found : All(table, row))
        AddRow(found.str(1), found.str(2), limits);
    return limits;
}

std::vector<std::optional<std::uint64_t>> DefinitionsOf(std::string_view sName,
                                                        std::string_view sSource) {
    std::vector<std::optional<std::uint64_t>> values;
    if (sSource.find(sName) == std::string_view::npos) return values;
    const std::string source(sSource);
    const std::regex definition("constexpr [\\w:]+ " + std::string(sName) + "\\s*=\\s*([^;]+);");
    for (const std::smatch& found : All(source, definition))
        values.push_back(ValueOf(found.str(1)));
    return values;
}

} // namespace qncomm::testing
