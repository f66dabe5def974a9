#include "trace/TraceReader.h"
#include "testing/core/ScratchFolder.h"
#include "trace/JsonLinesTrace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace qncomm {
namespace {

using ::testing::HasSubstr;

class TraceFile : public ::testing::Test {
  protected:
    void Write(const std::string& text) const { std::ofstream(mPath, std::ios::binary) << text; }

    testing::ScratchFolder mFolder;
    const std::string mPath = mFolder.File("trace");
};

TEST_F(TraceFile, EveryByteReadsBackAsItWasRecorded) {
    std::string all;
    for (int value = 0; value < 256; ++value)
        all += static_cast<char>(value);
    {
        JsonLinesTrace trace(mPath);
        trace.Record(1000, TraceKind::Event, "open COM1");
        trace.Record(1005, TraceKind::Sent, all);
        trace.Record(1017, TraceKind::Received, "Ok\r\n");
    }
    const TraceReading reading = ReadTrace(mPath);
    ASSERT_TRUE(reading.result.Ok()) << reading.result.text;
    ASSERT_EQ(reading.records.size(), 3U);
    EXPECT_EQ(reading.records[0].bytes, "open COM1");
    EXPECT_EQ(reading.records[1].bytes, all);
    EXPECT_EQ(reading.records[1].kind, TraceKind::Sent);
    EXPECT_EQ(reading.records[1].ms, 5);
    EXPECT_EQ(reading.records[2].kind, TraceKind::Received);
    EXPECT_EQ(reading.records[2].line, 3);
}

TEST_F(TraceFile, LineThatIsNoRecordIsNamed) {
    for (const char* const line :
         {"nonsense", "{}", "[1]", R"({"ms":"1","kind":"tx","bytes":"a"})",
          R"({"ms":1,"kind":"other","bytes":"a"})", R"({"ms":1,"kind":"tx","bytes":3})",
          R"({"ms":1,"kind":"tx","bytes":"€"})", R"({"ms":-1,"kind":"tx","bytes":"a"})",
          R"({"ms":9223372036854775807,"kind":"tx","bytes":"a"})",
          R"({"ms":1,"kind":"tx","bytes":"a","redacted":4})"}) {
        Write(R"({"ms":0,"kind":"tx","bytes":"a"})"
              "\n"
              + std::string(line) + "\n");
        EXPECT_THAT(ReadTrace(mPath).result.text, HasSubstr("line 2")) << line;
    }
}

TEST_F(TraceFile, LastLineThatWasCutShortIsLeftOut) {
    Write(R"({"ms":0,"kind":"tx","bytes":"a"})"
          "\n"
          R"({"ms":1,"kind":"rx","by)");
    const TraceReading reading = ReadTrace(mPath);
    EXPECT_TRUE(reading.result.Ok());
    EXPECT_EQ(reading.records.size(), 1U);
}

TEST_F(TraceFile, StandsForNoMoreBytesThanAMemoryBears) {
    const std::string most = R"({"ms":0,"kind":"rx","bytes":"","redacted":16777216})"
                             "\n";
    Write(most + most + most + most);
    EXPECT_TRUE(ReadTrace(mPath).result.Ok());
    Write(most + most + most + most + R"({"ms":0,"kind":"rx","bytes":"","redacted":1})" + "\n");
    EXPECT_EQ(ReadTrace(mPath).result.text,
              mPath + ": line 5 stands for more bytes than are replayed");
}

TEST_F(TraceFile, HasNoMoreRecordsThanAMemoryBears) {
    const std::string record = R"({"ms":0,"kind":"rx","bytes":"a"})"
                               "\n";
    Write(record + record);
    EXPECT_TRUE(ReadTrace(mPath, 2).result.Ok());
    Write(record + record + record);
    EXPECT_EQ(ReadTrace(mPath, 2).result.text, mPath + ": line 3 is one record more than are read");
}

TEST_F(TraceFile, HasNoLineThatIsLongerThanARecord) {
    const std::string begin = R"({"ms":0,"kind":"rx","bytes":")";
    const std::string end = R"("})";
    const std::string most(LongestTraceLine - begin.size() - end.size(), 'a');
    Write(begin + most + end + "\n");
    const TraceReading reading = ReadTrace(mPath);
    ASSERT_EQ(reading.records.size(), 1U);
    EXPECT_EQ(reading.records[0].bytes.size(), most.size());
    Write(begin + most + "a" + end + "\n");
    EXPECT_THAT(ReadTrace(mPath).result.text, HasSubstr("line 1 is no record"));
}

TEST_F(TraceFile, IsNotReadBeyondAGibibyte) {
    Write("");
    std::filesystem::resize_file(mPath, LargestTrace + 1); // a hole: the disk keeps none of it
    EXPECT_THAT(ReadTrace(mPath).result.text, HasSubstr("file too large"));
}

TEST_F(TraceFile, NestsAsDeepAsItLikesAndIsNoRecord) {
    Write(std::string(1 << 20, '[') + "\n");
    EXPECT_THAT(ReadTrace(mPath).result.text, HasSubstr("line 1 is no record"));
    Write(std::string(1 << 20, '[') + std::string(1 << 20, ']') + "\n");
    EXPECT_THAT(ReadTrace(mPath).result.text, HasSubstr("line 1 is no record"));
}

TEST_F(TraceFile, FileThatIsNotThereIsAResult) {
    EXPECT_EQ(ReadTrace(mPath + "/none").result.status, IoStatus::Missing);
}

TEST(TraceRecordLine, WritesWhatItReads) {
    const TraceRecord redacted{0, 7, TraceKind::Sent, "", 12};
    const std::string line = TraceLineOf(redacted);
    EXPECT_EQ(line, R"({"ms":7,"kind":"tx","bytes":"","redacted":12})");
    EXPECT_EQ(ParseTraceLine(line).value_or(TraceRecord{}).redacted, 12U);
}

} // namespace
} // namespace qncomm
