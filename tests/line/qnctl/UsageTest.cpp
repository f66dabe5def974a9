#include "testing/programs/QnctlFixture.h"

#include <regex>
#include <sstream>

namespace {

using qncomm::testing::Arguments;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Usage : public qncomm::testing::QnctlFixture {
  protected:
    /// What stands first in each line that the pattern finds in the help of a command.
    std::vector<std::string> InHelp(Arguments command, const char* pattern) const {
        command.emplace_back("--help");
        const std::string help = Run(command).out;
        std::vector<std::string> found;
        const std::regex wanted(pattern, std::regex::multiline);
        for (std::sregex_iterator i(help.begin(), help.end(), wanted), end; i != end; ++i)
            found.push_back((*i)[1]);
        return found;
    }

    /// All commands, those of groups by both words.
    std::vector<Arguments> Commands(const Arguments& above = {}) const {
        const std::string help = Run([&] {
                                     Arguments words = above;
                                     words.emplace_back("--help");
                                     return words;
                                 }())
                                     .out;
        const std::size_t list = help.find("Subcommands:");
        if (list == std::string::npos) return {above};
        std::vector<Arguments> commands;
        const std::regex name("^  ([a-z-]+) ", std::regex::multiline);
        const std::string names = help.substr(list);
        for (std::sregex_iterator i(names.begin(), names.end(), name), end; i != end; ++i) {
            Arguments words = above;
            words.push_back((*i)[1]);
            const std::vector<Arguments> below = Commands(words);
            commands.insert(commands.end(), below.begin(), below.end());
        }
        return commands;
    }

    std::vector<std::string> Completed(Arguments words) const {
        words.insert(words.begin(), "--complete");
        std::istringstream lines(Run(words).out);
        std::vector<std::string> found;
        for (std::string line; std::getline(lines, line);)
            found.push_back(line.substr(0, line.find('\t')));
        return found;
    }
};

std::string Roff(std::string_view text) {
    return std::regex_replace(std::string(text), std::regex("-"), "\\-");
}

TEST_F(Usage, EveryCommandAndOptionOfTheHelpIsInTheManualAndIsCompleted) {
    const std::string manual = Run({"--manual"}).out;
    const std::vector<Arguments> commands = Commands();
    ASSERT_GT(commands.size(), 40U);
    for (const Arguments& command : commands) {
        std::string words;
        for (const std::string& word : command)
            words += (words.empty() ? "" : " ") + word;
        EXPECT_THAT(manual, HasSubstr(".SS \\fB" + Roff(words) + "\\fR"));
        Arguments typed = command;
        typed.emplace_back("--");
        const std::vector<std::string> completed = Completed(typed);
        for (const std::string& option : InHelp(command, "^  (?:-.,)?(--[a-z0-9-]+)")) {
            EXPECT_THAT(manual, HasSubstr("\\fB" + Roff(option) + "\\fR")) << words;
            EXPECT_THAT(completed, testing::Contains(option)) << words;
        }
        typed.back() = command.back();
        typed.erase(typed.end() - 2);
        EXPECT_THAT(Completed(typed), testing::Contains(command.back())) << words;
    }
}

TEST_F(Usage, PortsThatARunHasFoundAreCompleted) {
    StartSimulator();
    EXPECT_EQ(Run({"connect", "--port", Printer()}).status, 0);
    EXPECT_THAT(Completed({"info", "--port", Printer().substr(0, 5)}),
                testing::Contains(Printer()));
    EXPECT_THAT(Completed({"--port", "sim"}), ElementsAre("sim:R7G"));
}

TEST_F(Usage, KeysAreCompletedWithTheirMacros) {
    EXPECT_EQ(Run({"macros", "set", "F3", "text", "PRINT 1<CR>"}).status, 0);
    EXPECT_EQ(Run({"--complete", "key", "F3"}).out, "F3\tPRINT 1<CR>\n");
    EXPECT_THAT(Completed({"macros", "set", "F3", ""}), ElementsAre("text", "file", "run"));
}

TEST_F(Usage, MembersAreCompleted) {
    EXPECT_THAT(Completed({"call", "PrinterT"}), ElementsAre("PrinterType"));
}

TEST_F(Usage, FilesAreLeftToTheShell) {
    constexpr int files = 3;
    EXPECT_EQ(Run({"--complete", "batch", ""}).status, files);
    EXPECT_EQ(Run({"--complete", "send", ""}).status, 0);
}

TEST_F(Usage, NothingIsSaidOfSettingsThatCannotBeRead) {
    WriteHostFile("torn.ini", std::string_view("[Ports]\0", 8));
    const auto ended = Run({"--complete", "--settings", PathOf("torn.ini"), "--port", "sim"});
    EXPECT_EQ(ended.out, "sim:R7G\tThe virtual printer\n");
    EXPECT_THAT(ended.err, IsEmpty());
}

} // namespace
