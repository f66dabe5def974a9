#include "HeaderComments.h"

#include <regex>
#include <sstream>
#include <utility>

namespace qncomm::bindings {

HeaderComments CommentsOf(const std::string& header) {
    static const std::regex comment(R"(^\s*/// ?(?!<)(.*)$)");
    static const std::regex function(R"((\w+)\()");
    HeaderComments all;
    std::vector<std::string> lines;
    std::istringstream text(header);
    for (std::string line; std::getline(text, line);) {
        std::smatch match;
        if (std::regex_match(line, match, comment)) {
            lines.push_back(match[1]);
            continue;
        }
        const auto above = std::exchange(lines, {});
        if (!above.empty() && std::regex_search(line, match, function))
            all.try_emplace(match[1], above);
    }
    return all;
}

} // namespace qncomm::bindings
