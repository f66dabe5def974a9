#include "PrinterFixture.h"

namespace qncomm::testing {
namespace {

class ProgramLink : public PrinterFixture {
  protected:
    static Collection<std::string> Modules(const Lines& names) {
        Collection<std::string> modules;
        for (const std::string& name : names)
            modules.Add(name);
        return modules;
    }
    /// The link's own claim and the cleared working memory.
    void ScriptBegin() {
        mSerial.Handshake();
        Script("NEW");
    }
    void ScriptHeader(const std::string& header) {
        mSerial.Expect("SYSVAR(18)=8:SYSVAR(19)=2:IMMEDIATE OFF\r\n").Expect(header + "\r\n");
        mSerial.Expect("IMMEDIATE ON\r\n").Reply("Ok\r\n");
        mSerial.Expect("SYSVAR(18)=-1:SYSVAR(19)=1\r\n").Reply("Ok\r\n", 100);
    }
};

TEST_F(ProgramLink, MergesTheModulesInTheirOrderBehindTheHeader) {
    Know("R7G");
    ScriptBegin();
    ScriptHeader("1 REM head\r\n2 REM more");
    mSerial.Exchange("MERGE\"tmp:A.PRG\"").Exchange("MERGE\"card1:B.PRG\"");
    EXPECT_TRUE(
        mQuorin.ProgramLink(Modules({"src/A.PRG", "", "card1:B.PRG"}), "1 REM head\r\n2 REM more"));
    EXPECT_THAT(mMessages, ElementsAre("Program link in progress -1", "Linking module tmp:A.PRG -1",
                                       "Linking module card1:B.PRG -1"));
}

TEST_F(ProgramLink, WithNothingToLinkOnlyClearsTheProgram) {
    ScriptBegin();
    EXPECT_TRUE(mQuorin.ProgramLink({}));
    EXPECT_THAT(mMessages, ElementsAre("Program link in progress -1"));
}

TEST_F(ProgramLink, TheLastMergesFailureIsNotMissedBehindTwoOks) {
    Know("R7A");
    ScriptBegin();
    ScriptHeader("1 REM");
    mSerial.Exchange("MERGE\"ram:A\"", {"Error 1030: File not found"});
    EXPECT_FALSE(mQuorin.ProgramLink(Modules({"A"}), "1 REM"));
    EXPECT_EQ(mLink.UseCount(), 0);
}

TEST_F(ProgramLink, StopsAtTheFirstError) {
    Know("R7A");
    ScriptBegin();
    mSerial.Exchange("MERGE\"ram:A\"", {"Error 1030: File not found"});
    EXPECT_FALSE(mQuorin.ProgramLink(Modules({"A", "B"})));
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(ProgramLink, AnErrorGivesBackOneClaimAlone) {
    Know("R7A");
    mSerial.Handshake();
    ASSERT_TRUE(mQuorin.PortOpen());
    mSerial.Handshake().Handshake().Exchange("NEW", {"Error 37: Busy"});
    EXPECT_FALSE(mQuorin.ProgramLink(Modules({"A"})));
    EXPECT_EQ(mLink.UseCount(), 1);
    mQuorin.PortClose();
}

TEST_F(ProgramLink, AMergeMayTake45Seconds) {
    Know("R7A");
    ScriptBegin();
    mSerial.Expect("MERGE\"ram:A\"\r\n").Reply("MERGE\"ram:A\"\r\nOk\r\n", 44999);
    EXPECT_TRUE(mQuorin.ProgramLink(Modules({"A"})));
    ScriptBegin();
    mSerial.Expect("MERGE\"ram:A\"\r\n");
    EXPECT_FALSE(mQuorin.ProgramLink(Modules({"A"})));
}

TEST_F(ProgramLink, ARefusedPortIsFalseAndRaisesNoEvent) {
    RefusePort();
    EXPECT_FALSE(mQuorin.ProgramLink(Modules({"A"})));
    EXPECT_THAT(mMessages, IsEmpty());
    GrantPort();
}

} // namespace
} // namespace qncomm::testing
