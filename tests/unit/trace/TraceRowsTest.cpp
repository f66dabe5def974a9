#include "trace/TraceRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qncomm {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

struct Shown {
    explicit Shown(TraceRows::Form form)
        : rows(form, [this](const TraceRow& row) {
              times.push_back(row.ms);
              texts.push_back(row.text);
          }) {}

    std::vector<std::int64_t> times;
    std::vector<std::string> texts;
    TraceRows rows;
};

TEST(TraceRows, EndWithTheLineAndTellWhenItBegan) {
    Shown shown(TraceRows::Form::Text);
    shown.rows.Add(10, TraceKind::Received, "4");
    EXPECT_THAT(shown.texts, SizeIs(0));
    shown.rows.Add(25, TraceKind::Received, "2\r\nOk\r");
    shown.rows.Add(40, TraceKind::Received, "\n");
    EXPECT_THAT(shown.texts, ElementsAre("42<CR><LF>", "Ok<CR><LF>"));
    EXPECT_THAT(shown.times, ElementsAre(10, 25));
}

TEST(TraceRows, ShowEveryControlByteAndKeepTheOthers) {
    Shown shown(TraceRows::Form::Text);
    shown.rows.Add(0, TraceKind::Received, std::string("\0\x1B[2J\x7F\x81\x80\xF6", 9));
    shown.rows.Flush();
    EXPECT_THAT(shown.texts, ElementsAre("<NUL><ESC>[2J<7F><81>\x80\xF6"));
}

TEST(TraceRows, TheOtherDirectionAndAnEventEndARow) {
    Shown shown(TraceRows::Form::Text);
    shown.rows.Add(1, TraceKind::Received, "half");
    shown.rows.Add(2, TraceKind::Sent, "CMD");
    shown.rows.Add(3, TraceKind::Event, "line errors: frame");
    shown.rows.Flush();
    EXPECT_THAT(shown.texts, ElementsAre("half", "CMD", "line errors: frame"));
    EXPECT_THAT(shown.times, ElementsAre(1, 2, 3));
}

TEST(TraceRows, ALineWithoutAnEndIsCutSoThatNothingGrows) {
    Shown shown(TraceRows::Form::Text);
    shown.rows.Add(0, TraceKind::Received, std::string(100'000, 'x'));
    shown.rows.Flush();
    EXPECT_THAT(shown.texts, SizeIs((100'000 + 119) / 120));
    EXPECT_THAT(shown.texts.front(), SizeIs(120));
}

TEST(TraceRows, HexHasSixteenBytesARowWithTheirText) {
    Shown shown(TraceRows::Form::Hex);
    shown.rows.Add(0, TraceKind::Received, "PRINT \"\xF6\"\r\n0123456");
    shown.rows.Flush();
    ASSERT_THAT(shown.texts, SizeIs(2));
    EXPECT_EQ(shown.texts[0],
              "50 52 49 4E 54 20 22 F6 22 0D 0A 30 31 32 33 34  PRINT \".\"..01234");
    EXPECT_EQ(shown.texts[1], "35 36 " + std::string(14 * 3, ' ') + " 56");
}

} // namespace
} // namespace qncomm
