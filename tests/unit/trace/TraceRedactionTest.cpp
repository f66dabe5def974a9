#include "trace/TraceRedaction.h"
#include "testing/core/ScratchFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace qncomm {
namespace {

/// A session in short: "> " sent, "< " received, "! " event; what was taken out stands as [length].
class Session {
  public:
    void Sent(const std::string& bytes) { Take(TraceKind::Sent, bytes); }
    void Received(const std::string& bytes) { Take(TraceKind::Received, bytes); }
    void Event(const std::string& text) { Take(TraceKind::Event, text); }

    std::string shown;

  private:
    void Take(TraceKind kind, const std::string& bytes) {
        constexpr std::string_view marks = "><!";
        for (const TraceRecord& record : mRedaction.Redact({1, 5, kind, bytes, 0})) {
            shown += marks.at(static_cast<std::size_t>(kind));
            shown +=
                record.redacted > 0 ? "[" + std::to_string(record.redacted) + "]" : record.bytes;
            EXPECT_EQ(record.ms, 5);
        }
    }

    TraceRedaction mRedaction;
};

TEST(TraceRedaction, LeavesTheDialogueAsItIs) {
    Session session;
    session.Event("open COM1");
    session.Sent("FILES \"ram:\"\r\n");
    session.Received("FILES \"ram:\"\r\nFILES ON ram:\r\nLOGO.PCX 1234 A.PRG 10\r\n");
    session.Received("100 BYTES FREE  20 BYTES USED\r\nOk\r\n");
    session.Sent("PRINT 6*7\r\n");
    session.Received("PRINT 6*7\r\n42\r\nError 5: x\r\nOk\r\n");
    EXPECT_EQ(session.shown.find('['), std::string::npos) << session.shown;
}

TEST(TraceRedaction, TakesOutWhatFollowsALoadByItsLength) {
    Session session;
    session.Sent("IMAGE LOAD \"LOGO12.PCX\",12,\"S\"\r");
    session.Received("IMAGE LOAD \"LOGO12.PCX\",12,\"S\"\r\n");
    session.Sent("secret");
    session.Sent("bytes!PRINT 1\r\n");
    session.Sent("PRINT 2\r\n");
    EXPECT_EQ(session.shown, ">IMAGE LOAD \"LOGO12.PCX\",12,\"S\"\r"
                             "<IMAGE LOAD \"LOGO12.PCX\",12,\"S\"\r\n>[6]>[6]>PRINT 1\r\n"
                             ">PRINT 2\r\n");
    Session oneRecord;
    oneRecord.Sent("FILE& LOAD \"X\",4\rabcd");
    EXPECT_EQ(oneRecord.shown, ">FILE& LOAD \"X\",4\r>[4]");
}

TEST(TraceRedaction, TakesOutATransferBothWaysUntilTheNextCommand) {
    Session session;
    session.Sent("CHDIR\"ram:\":TRANSFER K \"R\"\r\n");
    session.Received("CHDIR\"ram:\":TRANSFER K \"R\"\r\n\x01) S");
    session.Sent("\x01) S~* @\r");
    session.Sent("part of a packet\r");
    session.Received("answer\r");
    session.Received("\r\nOk\r\n");
    session.Sent("PRINT 1\r\n");
    session.Received("PRINT 1\r\n1\r\nOk\r\n");
    EXPECT_EQ(session.shown, ">CHDIR\"ram:\":TRANSFER K \"R\"\r\n<[32]>[9]>[17]<[7]<[6]>PRINT 1\r\n"
                             "<PRINT 1\r\n1\r\nOk\r\n");
}

TEST(TraceRedaction, TakesOutABinaryTransferThatNoCommandStarted) {
    Session session;
    session.Received("**\x18"
                     "B0100000023be50\r\n");
    session.Sent("contents of a file");
    session.Event("close");
    session.Sent("PRINT 1\r\n");
    EXPECT_EQ(session.shown, "<[20]>[18]!close>PRINT 1\r\n");
}

TEST(TraceRedaction, TakesOutProgramLinesHoweverTheyAreCut) {
    Session session;
    session.Sent("10 PRINT \"secret\"\r\n");
    session.Received("10 PRINT \"secret\"\r\n");
    session.Sent("LIST\r\n");
    session.Received("LIST\r\n1");
    session.Received("0 PRI");
    session.Received("NT \"secret\"\r\n20 END\r\nOk\r\n");
    EXPECT_EQ(session.shown, ">[19]<[19]>LIST\r\n<LIST\r\n1<[5]<[21]<Ok\r\n");
}

TEST(TraceRedaction, TakesOutAFileThatIsCopiedToTheHost) {
    Session session;
    session.Sent("COPY \"ram:A.TXT\",\"uart1:\"\r\n");
    session.Received("secret\r\nmore\r\nOk\r\n");
    session.Sent("PRINT 1\r\n");
    session.Received("1\r\nOk\r\n");
    EXPECT_EQ(session.shown,
              ">COPY \"ram:A.TXT\",\"uart1:\"\r\n<[14]<Ok\r\n>PRINT 1\r\n<1\r\nOk\r\n");
}

TEST(TraceRedaction, WritesAFileThatReadsBackAndIsRedactedAlready) {
    const testing::ScratchFolder scratch;
    const std::string& folder = scratch.Path();
    std::ofstream(folder + "/in") << TraceLineOf({0, 1, TraceKind::Sent, "10 END\r\n", 0}) << '\n'
                                  << TraceLineOf({0, 9, TraceKind::Received, "Ok\r\n", 0}) << '\n';
    EXPECT_TRUE(RedactTrace(folder + "/in", folder + "/once").Ok());
    EXPECT_TRUE(RedactTrace(folder + "/once", folder + "/twice").Ok());
    const TraceReading twice = ReadTrace(folder + "/twice");
    ASSERT_EQ(twice.records.size(), 2U);
    EXPECT_EQ(twice.records[0].redacted, 8U);
    EXPECT_EQ(twice.records[1].bytes, "Ok\r\n");
    EXPECT_EQ(RedactTrace(folder + "/none", folder + "/out").status, IoStatus::Missing);
    EXPECT_FALSE(RedactTrace(folder + "/in", folder + "/none/out").Ok());
}

} // namespace
} // namespace qncomm
