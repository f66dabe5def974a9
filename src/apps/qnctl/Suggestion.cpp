#include "Suggestion.h"

#include <algorithm>
#include <cstddef>

namespace qnctl {
namespace {

/// How many letters are left out, added, changed, or swapped with their neighbour.
std::size_t SlipsBetween(std::string_view word, std::string_view name) {
    std::vector<std::vector<std::size_t>> slips(word.size() + 1,
                                                std::vector<std::size_t>(name.size() + 1));
    for (std::size_t w = 0; w <= word.size(); ++w) {
        for (std::size_t n = 0; n <= name.size(); ++n) {
            if (w == 0 || n == 0) {
                slips[w][n] = w + n;
                continue;
            }
            const bool same = word[w - 1] == name[n - 1];
            slips[w][n] = std::min(
                {slips[w - 1][n] + 1, slips[w][n - 1] + 1, slips[w - 1][n - 1] + (same ? 0 : 1)});
            if (w > 1 && n > 1 && word[w - 1] == name[n - 2] && word[w - 2] == name[n - 1])
                slips[w][n] = std::min(slips[w][n], slips[w - 2][n - 2] + 1);
        }
    }
    return slips[word.size()][name.size()];
}

} // namespace

std::string NearestName(std::string_view word, const std::vector<std::string>& names) {
    constexpr std::size_t longest = 32; // no command's name is near a longer word
    if (word.size() > longest) return {};
    std::string nearest;
    std::size_t fewest = word.size() / 3 + 1; // a slip in a short word, more in a long one
    for (const std::string& name : names) {
        if (!word.empty() && name.size() > word.size() && name.starts_with(word)) return name;
        const std::size_t slips = SlipsBetween(word, name);
        if (slips > fewest || (slips == fewest && !nearest.empty())) continue;
        fewest = slips;
        nearest = name;
    }
    return nearest;
}

} // namespace qnctl
