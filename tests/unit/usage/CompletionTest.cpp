#include "usage/Completion.h"
#include "usage/ShellAnswer.h"

#include <gmock/gmock.h>

namespace {

using qncomm::Offer;
using qncomm::Offers;
using qncomm::Usage;
using testing::ElementsAre;
using testing::IsEmpty;

/// A program with an option of its own, a group, and a command with every kind of argument.
Usage Program() {
    const Usage::Option help{{"-h", "--help"}, {}, "Help"};
    const Usage send{.name = "send",
                     .help = "Sends",
                     .options = {help, {{"--wait"}, {"MS", {}}, "Waits"}},
                     .arguments = {{{"KIND", {"text", "file"}}, "What", true},
                                   {{"FILE", {}}, "From", true},
                                   {{"PLACE", {}}, "Where", false, true}}};
    return {.name = "tool",
            .help = "Does things.",
            .options = {help, {{"--port"}, {"PLACE", {}}, "The port"}},
            .commands = {{.name = "line", .help = "The line", .commands = {send}},
                         {.name = "list", .help = "Lists"}}};
}

std::vector<Offer> Places(const std::string& value) {
    if (value != "PLACE") return {};
    return {{"here", ""}, {"sim:there", "far"}};
}

std::vector<std::string> Words(const std::vector<std::string>& typed) {
    std::vector<std::string> words;
    for (const Offer& offer : qncomm::Complete(Program(), typed, Places).words)
        words.push_back(offer.word);
    return words;
}

bool WantsFiles(const std::vector<std::string>& typed) {
    return qncomm::Complete(Program(), typed, Places).files;
}

TEST(Completion, OffersCommandsAndThoseOfAGroup) {
    EXPECT_THAT(Words({}), ElementsAre("line", "list"));
    EXPECT_THAT(Words({"lis"}), ElementsAre("list"));
    EXPECT_THAT(Words({"line", ""}), ElementsAre("send"));
}

TEST(Completion, OffersOptionsOfTheCommandAndOfTheProgramOnce) {
    EXPECT_THAT(Words({"line", "send", "-"}), ElementsAre("-h", "--help", "--wait", "--port"));
    EXPECT_THAT(Words({"list", "--p"}), ElementsAre("--port"));
}

TEST(Completion, OffersTheChoicesOfAnArgument) {
    EXPECT_THAT(Words({"line", "send", ""}), ElementsAre("text", "file"));
    EXPECT_THAT(Words({"line", "send", "--wait", "5", "f"}), ElementsAre("file"));
}

TEST(Completion, OffersNamesThatAreKnownJustNow) {
    EXPECT_THAT(Words({"--port", ""}), ElementsAre("here", "sim:there"));
    EXPECT_THAT(Words({"list", "--port", "sim:"}), ElementsAre("sim:there"));
    EXPECT_THAT(Words({"--port=s"}), ElementsAre("--port=sim:there"));
}

TEST(Completion, OffersMoreOfAnArgumentThatIsRepeated) {
    EXPECT_THAT(Words({"line", "send", "text", "a", "b", "c", "h"}), ElementsAre("here"));
}

TEST(Completion, LeavesFilesToTheShell) {
    EXPECT_TRUE(WantsFiles({"line", "send", "file", ""}));
    EXPECT_FALSE(WantsFiles({"line", "send", ""}));
    EXPECT_FALSE(WantsFiles({"line", "send", "--wait", ""}));
}

TEST(Completion, OffersNoOptionBehindTwoDashes) {
    EXPECT_THAT(Words({"line", "send", "--", "text", "a", "--p"}), IsEmpty());
}

TEST(Completion, OffersNothingBehindWhatIsWrong) {
    EXPECT_THAT(Words({"lime", ""}), IsEmpty());
    EXPECT_THAT(Words({"list", "--pace", ""}), IsEmpty());
    EXPECT_THAT(Words({"list", ""}), IsEmpty());
}

TEST(ShellAnswer, IsALineForEachWordAndAStatusForFiles) {
    const auto answer = [](const std::vector<std::string>& arguments) {
        return qncomm::AnswerShell(arguments, Program, "1.2", Places);
    };
    EXPECT_EQ(answer({"--complete", "l"})->text, "line\tThe line\nlist\tLists\n");
    EXPECT_EQ(answer({"--complete", "l"})->status, 0);
    EXPECT_EQ(answer({"--complete", "line", "send", "text", ""})->status,
              qncomm::ShellAnswer::Files);
    EXPECT_FALSE(answer({"list"}));
    EXPECT_FALSE(answer({}));
}

TEST(ShellAnswer, ObeysNothingThatANameHolds) {
    const auto hostile = [](const std::string&) -> std::vector<Offer> {
        return {{"a\nb", ""}, {"fine", "\x1B[2J\nfake\tword"}};
    };
    EXPECT_EQ(qncomm::AnswerShell({"--complete", "--port", ""}, Program, "1.2", hostile)->text,
              "fine\t\\x1B[2J\\x0Afake\\x09word\n");
}

} // namespace
