#include "ConsoleBlocks.h"

#include <cstddef>

namespace qncomm::testing {
namespace {

bool MatchesFrom(const std::vector<std::string>& shown, std::size_t s,
                 const std::vector<std::string>& real, std::size_t r) {
    for (; s < shown.size(); ++s, ++r) {
        if (shown[s] == "…") {
            for (std::size_t skip = r; skip <= real.size(); ++skip)
                if (MatchesFrom(shown, s + 1, real, skip)) return true;
            return false;
        }
        if (r == real.size() || shown[s] != real[r]) return false;
    }
    return r == real.size();
}

} // namespace

std::vector<std::string> LinesOf(std::string_view sText) {
    std::vector<std::string> lines;
    while (!sText.empty()) {
        const std::size_t end = sText.find('\n');
        std::string line(sText.substr(0, end));
        if (line.ends_with('\r')) line.pop_back();
        lines.push_back(std::move(line));
        if (end == std::string_view::npos) break;
        sText.remove_prefix(end + 1);
    }
    return lines;
}

std::vector<ShownCommand> CommandsOf(std::string_view sDocument) {
    std::vector<ShownCommand> commands;
    bool inside = false;
    bool named = false; // an output belongs to a command
    int number = 0;
    for (const std::string& line : LinesOf(sDocument)) {
        ++number;
        if (line.starts_with("```")) {
            inside = line == "```console";
            named = false;
        } else if (inside && line.starts_with("$ ")) {
            commands.push_back({line.substr(2), {}, number});
            named = true;
        } else if (inside && named) {
            commands.back().output.push_back(line);
        }
    }
    return commands;
}

bool Matches(const std::vector<std::string>& shown, const std::vector<std::string>& real) {
    return MatchesFrom(shown, 0, real, 0);
}

} // namespace qncomm::testing
