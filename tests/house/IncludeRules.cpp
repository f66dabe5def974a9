#include "IncludeRules.h"

#include <algorithm>
#include <array>
#include <optional>
#include <regex>

namespace qncomm::testing {
namespace {

/// What a folder may know beside the project's own headers.
enum class World {
    Language, ///< the standard library without files, streams to them, threads and signals
    System,   ///< the operating system and libraries, but no toolkit
    Toolkit,  ///< everything
};

/// One row of the house's table, for a folder and all below it that has no row of its own.
struct Rule {
    std::string_view folder; ///< below src/
    std::string_view name;   ///< how its own headers are included, such as "qt" in "qt/X.h"
    World world;
    /// The names of other folders' headers, with blanks between; a whole "link/X.h" is that one.
    std::string_view mayInclude;
};

constexpr std::array Rules{
    Rule{"common", "common", World::Language, ""},
    Rule{"link", "link", World::Language, "common"},
    Rule{"printer", "printer", World::Language, "link common"},
    Rule{"dialogs", "dialogs", World::Language, "link common"},
    Rule{"control", "control", World::Language, "printer link dialogs common"},
    Rule{"automation", "automation", World::Language, "control printer link dialogs common"},
    Rule{"transfer", "transfer", World::Language, "common"},
    Rule{"terminal", "terminal", World::Language, "common"},
    Rule{"terminal/view", "terminal/view", World::Language, "terminal common"},
    Rule{"platform", "platform", World::System, "common"},
    Rule{"trace", "trace", World::System, "platform common"},
    Rule{"serial", "serial", World::System, "link/SerialControl.h transfer trace platform common"},
    Rule{"serial/testing", "serial_testing", World::System, "serial platform"},
    Rule{"diagnosis", "diagnosis", World::System, "link serial trace platform common"},
    Rule{"simulator", "simulator", World::System, "language transfer platform"},
    Rule{"simulator/label", "label", World::System, "platform"},
    Rule{"simulator/language", "language", World::System, "label"},
    Rule{"simulator/endpoints", "endpoints", World::System, "simulator trace platform"},
    Rule{"assembly", "assembly", World::System,
         "control printer link dialogs common serial terminal trace platform"},
    Rule{"assembly/virtual_printer", "assembly", World::System, "serial simulator platform common"},
    Rule{"faces/console", "console", World::System,
         "assembly automation control printer link dialogs common platform"},
    Rule{"faces/usage", "usage", World::System, "common"},
    Rule{"faces/qt", "qt", World::Toolkit,
         "assembly automation terminal terminal/view control printer link dialogs common platform"},
    Rule{"faces/qt/designer", "designer", World::Toolkit, "qt"},
    Rule{"apps/qnctl", "qnctl", World::System,
         "console usage diagnosis trace serial assembly automation control printer link dialogs "
         "common "
         "platform"},
    Rule{"apps/qnsim", "qnsim", World::System, "usage endpoints simulator trace platform common"},
    Rule{"apps/qnterm", "qnterm", World::Toolkit,
         "qt usage diagnosis trace serial assembly automation terminal terminal/view control "
         "printer link "
         "dialogs common platform"},
    Rule{"bindings/c", "qncomm", World::System,
         "console assembly automation control printer link dialogs common terminal serial trace "
         "platform"},
};

/// Headers of the standard library that mean the world outside: files, streams, threads, signals.
/// <chrono> is none of them: moments are passed in.
constexpr std::array<std::string_view, 17> OutsideWorld{
    "atomic",       "barrier",    "condition_variable", "csignal", "cstdio", "filesystem",
    "fstream",      "future",     "iostream",           "latch",   "mutex",  "semaphore",
    "shared_mutex", "stop_token", "syncstream",         "thread",  "ctime"};

bool Lists(std::string_view words, std::string_view word) {
    while (!words.empty()) {
        const std::size_t end = std::min(words.find(' '), words.size());
        if (words.substr(0, end) == word) return true;
        words.remove_prefix(std::min(end + 1, words.size()));
    }
    return false;
}

const Rule* RuleFor(std::string_view file) {
    const Rule* innermost = nullptr;
    for (const Rule& rule : Rules) {
        const bool inside =
            file.starts_with(rule.folder) && file.substr(rule.folder.size()).starts_with('/');
        if (inside && (innermost == nullptr || rule.folder.size() > innermost->folder.size()))
            innermost = &rule;
    }
    return innermost;
}

/// What stands before a header's name, such as "terminal/view"; empty for a header that the file's
/// own library keeps to itself.
std::string_view NamedFolder(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string_view{} : path.substr(0, slash);
}

std::optional<std::string> ObjectionToOwn(const Rule& rule, std::string_view path) {
    if (path.find("..") != std::string_view::npos) return "leaves its folder by a relative path";
    const std::string_view name = NamedFolder(path);
    if (name.empty() || name == rule.name) return std::nullopt;
    if (Lists(rule.mayInclude, name) || Lists(rule.mayInclude, path)) return std::nullopt;
    return "is not in the row of " + std::string(rule.folder) + "/";
}

std::optional<std::string> ObjectionToForeign(const Rule& rule, const std::string& path) {
    // Standard headers have neither a folder nor an extension; their C forms (<stdio.h>) are not
    // used here.
    static const std::regex standard("[a-z0-9_]+");
    static const std::regex toolkit("Q[A-Za-z]+(/.*)?");
    if (rule.world == World::Toolkit) return std::nullopt;
    if (rule.world == World::System)
        return std::regex_match(path, toolkit)
                   ? std::optional("is a toolkit's, which only a face of its own may know")
                   : std::nullopt;
    if (!std::regex_match(path, standard)) return "is not of the standard library";
    if (std::ranges::find(OutsideWorld, path) != OutsideWorld.end())
        return "means files, threads or the like, which an adapter brings";
    return std::nullopt;
}

} // namespace

std::vector<Include> IncludesOf(std::string_view sText) {
    static const std::regex line(R"re((?:^|\n)[ \t]*#[ \t]*include[ \t]*([<"])([^>"\n]+)[>"])re");
    std::vector<Include> includes;
    using Iterator = std::regex_iterator<std::string_view::const_iterator>;
    for (Iterator match(sText.begin(), sText.end(), line); match != Iterator(); ++match)
        includes.push_back({(*match)[2].str(), (*match)[1].str() == "\""});
    return includes;
}

std::string_view RuledFolderOf(std::string_view sFile) {
    const Rule* rule = RuleFor(sFile);
    return rule == nullptr ? std::string_view{} : rule->folder;
}

std::vector<std::string> StrayIncludes(std::string_view sFile, std::string_view sText) {
    const Rule* rule = RuleFor(sFile);
    if (rule == nullptr) return {};
    std::vector<std::string> stray;
    for (const Include& include : IncludesOf(sText)) {
        const auto objection = include.quoted ? ObjectionToOwn(*rule, include.path)
                                              : ObjectionToForeign(*rule, include.path);
        if (objection)
            stray.push_back(std::string(sFile) + ": \"" + include.path + "\" " + *objection);
    }
    return stray;
}

} // namespace qncomm::testing
