#include "console/StatusLine.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using qncomm::StatusLine;

TEST(StatusLine, AtATerminalWritesOverItselfAndGoesAway) {
    std::ostringstream out;
    {
        StatusLine line(out, StatusLine::Style::Transient);
        line.Show("Searching");
        line.Show("Found", 50);
    }
    EXPECT_EQ(out.str(), "\rSearching\x1B[K\r[##########..........] 50 % Found\x1B[K\r\x1B[K");
}

TEST(StatusLine, NeverFillsTheTerminalsWidth) {
    std::ostringstream out;
    StatusLine line(out, StatusLine::Style::Transient, 20);
    line.Show("åååååååååååååååååååååååååååååå");
    EXPECT_EQ(out.str(), "\rååååååååååååååååååå\x1B[K"); // nineteen
}

TEST(StatusLine, ElsewhereWritesEachMessageOnce) {
    std::ostringstream out;
    {
        StatusLine line(out, StatusLine::Style::Lines);
        line.Show("Searching... 9600,m,8,2", 3);
        line.Show("Searching... 9600,m,8,2", 6);
        line.Show("No Printer found", 100);
    }
    EXPECT_EQ(out.str(), "Searching... 9600,m,8,2\nNo Printer found\n");
}

TEST(StatusLine, SwitchedOffWritesNothing) {
    std::ostringstream out;
    StatusLine line(out, StatusLine::Style::Off);
    line.Show("Searching", 10);
    line.Clear();
    EXPECT_EQ(out.str(), "");
}

TEST(StatusLine, ShowsWhatThePrinterSentWithoutObeyingIt) {
    std::ostringstream out;
    StatusLine line(out, StatusLine::Style::Lines);
    line.Show("\x1B[2J\xE5");
    EXPECT_EQ(out.str(), "\\x1B[2Jå\n");
}

} // namespace
