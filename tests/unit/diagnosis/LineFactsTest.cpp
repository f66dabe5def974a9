#include "diagnosis/LineFacts.h"

#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

constexpr const char* Probe = "\x11\rIMMEDIATE ON:SYSVAR(18)=-1:PRINT\"HELLO\"\r";
constexpr const char* Echo = "\r\nIMMEDIATE ON:SYSVAR(18)=-1:PRINT\"HELLO\"\r\n";

/// A search of one opening in which that was answered.
Answer AnswerOf(const std::string& received, int damaged = 0) {
    LineSegment segment{.settings = "9600,N,8,2", .errors = {}, .exchanges = {{Probe, received}}};
    segment.damaged = damaged;
    return Judge({{.settings = "19200,N,8,2", .errors = {}, .exchanges = {{Probe, ""}}}, segment});
}

TEST(LineFacts, WhatCameBackIsJudged) {
    EXPECT_EQ(AnswerOf(""), Answer::Nothing);
    EXPECT_EQ(AnswerOf(Probe), Answer::Echo);
    EXPECT_EQ(AnswerOf(std::string(Probe).substr(0, 20)), Answer::Echo);
    EXPECT_EQ(AnswerOf(Echo), Answer::Taken);
    EXPECT_EQ(AnswerOf(std::string(Echo) + "HELLO\r\nOk\r\n"), Answer::Half);
    EXPECT_EQ(AnswerOf("HELLO\r\nOk\r\n"), Answer::Half);
    EXPECT_EQ(AnswerOf("\r\nhost login: "), Answer::Text);
    EXPECT_EQ(AnswerOf("\x9a\xff\x13\x82\x90\x01\x7f\xee"), Answer::Noise);
    EXPECT_EQ(AnswerOf("~`|x@~`x@", 1), Answer::Noise) << "a damaged text is none";
}

TEST(LineFacts, ARecordKeepsWhatTravelledByOpenings) {
    LineRecord record;
    record.Record(0, TraceKind::Event, "open COM1 (/dev/ttyUSB0) 9600,N,8,2");
    record.Record(1, TraceKind::Received, "a");
    record.Record(1, TraceKind::Event, "line errors: frame parity");
    record.Record(2, TraceKind::Sent, "b");
    record.Record(2, TraceKind::Sent, "c");
    record.Record(3, TraceKind::Received, "d");
    record.Record(4, TraceKind::Event, "open COM1 (/dev/ttyUSB0) 19200,N,8,2");
    EXPECT_FALSE(record.HasNoModemLines());
    record.Record(4, TraceKind::Event, NoModemLinesEvent);
    ASSERT_EQ(record.Segments().size(), 2U);
    const LineSegment& first = record.Segments().front();
    EXPECT_EQ(first.settings, "9600,N,8,2");
    EXPECT_EQ(first.Received(), "ad");
    EXPECT_EQ(first.exchanges.back().sent, "bc");
    EXPECT_TRUE(first.errors.frame && first.errors.parity);
    EXPECT_FALSE(first.errors.overrun);
    EXPECT_EQ(first.damaged, 1);
    EXPECT_TRUE(first.Sent());
    EXPECT_FALSE(record.Segments().back().Sent());
    EXPECT_TRUE(record.HasNoModemLines());
}

TEST(LineFacts, BytesAreShownByNameAndShort) {
    EXPECT_EQ(Shown("42\r\n\xfc"), "42<CR><LF><FC>");
    EXPECT_EQ(Shown(std::string(500, 'a')), std::string(48, 'a'));
}

} // namespace
} // namespace qncomm::testing
