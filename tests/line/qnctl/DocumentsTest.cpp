#include "ConsoleBlocks.h"
#include "testing/core/ScratchFolder.h"
#include "testing/programs/Program.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

namespace {

namespace fs = std::filesystem;
using qncomm::testing::CommandsOf;
using qncomm::testing::LinesOf;
using qncomm::testing::Matches;
using qncomm::testing::Program;
using qncomm::testing::ShownCommand;
using testing::ElementsAre;

using Lines = std::vector<std::string>;

TEST(ConsoleBlocks, AreTheCommandsOfConsoleSessionsWithTheirOutput) {
    const auto commands = CommandsOf("text\n```sh\n$ not this\n```\n```console\n$ one 1\nout\n\n"
                                     "$ two\n```\nafter\n");
    ASSERT_EQ(commands.size(), 2U);
    EXPECT_EQ(commands[0].command, "one 1");
    EXPECT_THAT(commands[0].output, ElementsAre("out", ""));
    EXPECT_EQ(commands[0].line, 6);
    EXPECT_EQ(commands[1].command, "two");
}

TEST(ConsoleBlocks, MatchLineForLineAndAnEllipsisStandsForAny) {
    EXPECT_TRUE(Matches({"a", "b"}, {"a", "b"}));
    EXPECT_FALSE(Matches({"a", "b"}, {"a"}));
    EXPECT_FALSE(Matches({"a"}, {"a", "b"}));
    EXPECT_TRUE(Matches({"a", "…", "z"}, {"a", "m", "n", "z"}));
    EXPECT_TRUE(Matches({"a", "…"}, {"a"}));
    EXPECT_FALSE(Matches({"a", "…", "z"}, {"a", "m"}));
}

/// A file of the project.
std::string BytesOf(const std::string& name) {
    return qncomm::testing::ContentOf(std::string(QN_SOURCE_DIR) + "/" + name);
}

/// Runs a document's sessions in an empty folder, as a reader would: the programs are found by
/// name, and what a document keeps in /tmp is kept in that folder.
class Document : public testing::TestWithParam<const char*> {
  protected:
    std::string InFolder(std::string text) const {
        const std::string shown = "/tmp/";
        const std::string real = mFolder.Path() + "/";
        for (std::size_t at = 0; (at = text.find(shown, at)) != std::string::npos;
             at += real.size())
            text.replace(at, shown.size(), real);
        return text;
    }

    Lines InFolder(const Lines& lines) const {
        Lines real;
        for (const std::string& line : lines)
            real.push_back(InFolder(line));
        return real;
    }

    std::unique_ptr<Program> Shell(const std::string& command) const {
        const char* path = std::getenv("PATH");
        return std::make_unique<Program>(
            Lines{"bash", "-c",
                  "cd '" + mFolder.Path() + "' && { " + InFolder(command) + "\n} 2>&1"},
            Program::Stdio::Pipes,
            Lines{"PATH=" QN_PROGRAMS ":" + std::string(path != nullptr ? path : "/usr/bin:/bin"),
                  "XDG_CONFIG_HOME=" + mFolder.Path(), "HOME=" + mFolder.Path()});
    }

    void Check(const ShownCommand& shown) {
        SCOPED_TRACE("line " + std::to_string(shown.line) + ": " + shown.command);
        const bool serves = shown.command.starts_with("qnsim ");
        // A server takes the shell's place, so that it ends with the program that is held here.
        auto program = Shell(serves ? "exec " + shown.command : shown.command);
        const Lines expected = InFolder(shown.output);
        if (serves) {
            // Serves until the document ends; its first line says that it is there.
            ASSERT_TRUE(program->WaitForOut("\n")) << program->Out();
            EXPECT_TRUE(Matches(expected, LinesOf(program->Out()))) << program->Out();
            mServers.push_back(std::move(program));
            return;
        }
        program->CloseInput();
        program->Wait();
        EXPECT_TRUE(Matches(expected, LinesOf(program->Out())))
            << "shown:\n"
            << testing::PrintToString(expected) << "\nreal:\n"
            << program->Out();
    }

    qncomm::testing::ScratchFolder mFolder;
    std::vector<std::unique_ptr<Program>> mServers;
};

TEST_P(Document, ShowsWhatItsCommandsReallyPrint) {
    const auto commands = CommandsOf(BytesOf(GetParam()));
    EXPECT_FALSE(commands.empty());
    for (const ShownCommand& shown : commands)
        Check(shown);
}

/// The document whose sessions print a label that it also shows.
class DocumentWithLabel : public Document {};

TEST_P(DocumentWithLabel, ShowsTheLabelThatItsCommandsPrint) {
    for (const ShownCommand& shown : CommandsOf(BytesOf(GetParam())))
        if (shown.command.find("label.txt") != std::string::npos) Check(shown);
    const std::string printed = mFolder.Read("pictures/label-0001.png");
    EXPECT_FALSE(printed.empty());
    EXPECT_TRUE(printed == BytesOf("docs/label.png"));
}

INSTANTIATE_TEST_SUITE_P(Readme, DocumentWithLabel, testing::Values("README.md"));

INSTANTIATE_TEST_SUITE_P(Documents, Document,
                         testing::Values("README.md", "docs/qnctl.md", "docs/ports.md",
                                         "docs/line.md"),
                         [](const auto& document) {
                             std::string name = fs::path(document.param).stem().string();
                             return name;
                         });

} // namespace
