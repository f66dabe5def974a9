#include "usage/ManualPage.h"

#include <gmock/gmock.h>

namespace {

using qncomm::ManualPage;
using qncomm::Usage;
using testing::HasSubstr;
using testing::Not;

TEST(ManualPage, HasTheProgramItsCommandsAndTheirArguments) {
    const Usage::Option help{{"-h", "--help"}, {}, "Help"};
    const Usage send{.name = "send",
                     .help = "Send a file",
                     .options = {help, {{"--wait"}, {"MS", {}}, "Milliseconds"}},
                     .arguments = {{{"KIND", {"text", "file"}}, "What it is", true},
                                   {{"NAME", {}}, "Its name", false, true}}};
    const std::string page =
        ManualPage({.name = "tool",
                    .help = "Does things. And more.",
                    .notes = "Ends with 0.",
                    .options = {help},
                    .commands = {{.name = "line", .help = "The line", .commands = {send}}}},
                   "1.2");
    EXPECT_EQ(page, ".TH TOOL 1 \"\" \"QNComm 1.2\" \"QNComm\"\n"
                    ".SH NAME\ntool \\- Does things\n"
                    ".SH SYNOPSIS\n\\fBtool\\fR [\\fIOPTION\\fR]... \\fICOMMAND\\fR\n"
                    ".SH DESCRIPTION\nDoes things. And more.\n.PP\nEnds with 0.\n"
                    ".SH OPTIONS\n.TP\n\\fB\\-h\\fR, \\fB\\-\\-help\\fR\nHelp\n"
                    ".SH COMMANDS\n"
                    ".SS \\fBline send\\fR [\\fIOPTION\\fR]... \\fBtext\\fR|\\fBfile\\fR "
                    "[\\fINAME\\fR...]\nSend a file.\n"
                    ".TP\n\\fIKIND\\fR\nWhat it is\n.TP\n\\fINAME\\fR\nIts name\n"
                    ".TP\n\\fB\\-\\-wait\\fR \\fIMS\\fR\nMilliseconds\n"
                    ".SH SEE ALSO\n\\fBqnctl\\fR(1), \\fBqnsim\\fR(1), \\fBqnterm\\fR(1)\n");
}

TEST(ManualPage, TakesNoTextForARequest) {
    const std::string page =
        ManualPage({.name = "tool", .help = ".so /etc/passwd\n'x a\\b - c"}, "1.2");
    EXPECT_THAT(page, HasSubstr("\n\\&.so /etc/passwd\n\\&'x a\\eb \\- c\n"));
    EXPECT_THAT(page, Not(HasSubstr("\n.so")));
}

} // namespace
