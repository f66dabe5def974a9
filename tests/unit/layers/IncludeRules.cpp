#include "IncludeRules.h"

#include <algorithm>
#include <array>
#include <optional>
#include <regex>
#include <span>

namespace layers {
namespace {

using Names = std::span<const std::string_view>;

/// One row of the house's table. A name that ends in ".h" stands for that header alone.
struct Rule {
    std::string_view folder;
    Names mayInclude;
    bool standardLibraryOnly;
};

constexpr std::array<std::string_view, 1> Common{"common"};
constexpr std::array<std::string_view, 2> LinkCommon{"link", "common"};
constexpr std::array<std::string_view, 4> BelowControl{"printer", "link", "dialogs", "common"};
constexpr std::array<std::string_view, 5> BelowAutomation{"control", "printer", "link", "dialogs",
                                                          "common"};
constexpr std::array<std::string_view, 2> BelowTrace{"common", "platform"};
constexpr std::array<std::string_view, 6> BelowSerial{
    "common", "platform", "link/SerialControl.h", "transfer", "terminal", "trace"};
constexpr std::array<std::string_view, 3> BelowSimulator{"transfer", "trace", "platform"};
constexpr std::array<std::string_view, 10> BelowAssembly{
    "control",  "printer", "link",     "dialogs", "common",
    "platform", "serial",  "terminal", "trace",   "simulator"};
constexpr std::array<std::string_view, 8> BelowConsole{
    "automation", "assembly", "control", "printer", "link", "dialogs", "common", "platform"};
constexpr std::array<std::string_view, 9> BelowQt{"automation", "assembly", "terminal",
                                                  "control",    "printer",  "link",
                                                  "dialogs",    "common",   "platform"};

constexpr std::array<std::string_view, 2> TerminalCommon{"terminal", "common"};

constexpr std::array Rules{
    Rule{"common", {}, true},
    Rule{"link", Common, true},
    Rule{"printer", LinkCommon, true},
    Rule{"dialogs", LinkCommon, true},
    Rule{"control", BelowControl, true},
    Rule{"automation", BelowAutomation, true},
    Rule{"platform", Common, false},
    Rule{"transfer", Common, true},
    Rule{"terminal/view", TerminalCommon, true},
    Rule{"terminal", Common, true},
    Rule{"trace", BelowTrace, false},
    Rule{"serial", BelowSerial, false},
    Rule{"simulator", BelowSimulator, false},
    Rule{"assembly", BelowAssembly, false},
    Rule{"faces/console", BelowConsole, false},
    Rule{"faces/qt", BelowQt, false},
};

/// The project's folders as they stand at the start of an include.
constexpr std::array<std::string_view, 19> ProjectFolders{
    "automation", "transfer", "terminal", "common",    "link",     "printer", "dialogs",
    "control",    "platform", "serial",   "simulator", "assembly", "faces",   "console",
    "qt",         "apps",     "bindings", "tests",     "trace"};

const std::regex& StandardHeader() {
    // Standard headers have neither a folder nor an extension; their C forms (<stdio.h>) are not
    // used here.
    static const std::regex pattern("[a-z0-9_]+");
    return pattern;
}

std::string_view FirstFolder(std::string_view path) {
    const std::size_t slash = path.find('/');
    return slash == std::string_view::npos ? std::string_view{} : path.substr(0, slash);
}

const Rule* RuleFor(std::string_view file) {
    const auto found = std::find_if(Rules.begin(), Rules.end(), [&](const Rule& rule) {
        return file.starts_with(rule.folder) && file.substr(rule.folder.size()).starts_with('/');
    });
    return found != Rules.end() ? &*found : nullptr;
}

/// A folder with a row of its own inside of another one is not that other one's own.
bool IsOwn(const Rule& rule, std::string_view include) {
    const Rule* inner = RuleFor(include);
    if (inner != nullptr && inner != &rule) return false;
    return FirstFolder(include) == rule.folder.substr(rule.folder.find('/') + 1);
}

bool Allows(const Rule& rule, std::string_view include) {
    const std::string_view folder = FirstFolder(include);
    return IsOwn(rule, include)
           || std::ranges::any_of(rule.mayInclude, [&](std::string_view allowed) {
                  return allowed.ends_with(".h") ? allowed == include : allowed == folder;
              });
}

std::optional<std::string> Objection(const Rule& rule, const Include& include) {
    if (include.path.find("..") != std::string::npos) return "leaves its folder by a relative path";
    const std::string_view folder = FirstFolder(include.path);
    if (std::ranges::find(ProjectFolders, folder) != ProjectFolders.end()) {
        if (Allows(rule, include.path)) return std::nullopt;
        return "is not in the row of " + std::string(rule.folder) + "/";
    }
    if (!include.quoted && rule.standardLibraryOnly
        && !std::regex_match(include.path, StandardHeader()))
        return "is not of the standard library";
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

std::vector<std::string> StrayIncludes(std::string_view sFile, std::string_view sText) {
    const Rule* rule = RuleFor(sFile);
    if (rule == nullptr) return {};
    std::vector<std::string> stray;
    for (const Include& include : IncludesOf(sText))
        if (const auto objection = Objection(*rule, include))
            stray.push_back(std::string(sFile) + ": \"" + include.path + "\" " + *objection);
    return stray;
}

std::vector<std::string_view> RuledFolders() {
    std::vector<std::string_view> folders;
    for (const Rule& rule : Rules)
        folders.push_back(rule.folder);
    return folders;
}

} // namespace layers
