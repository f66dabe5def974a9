#include "testing/programs/QnctlFixture.h"

namespace {

using qncomm::testing::Ended;
using testing::HasSubstr;
using testing::Not;

/// A printer on a pseudo-terminal that one run has found.
class Remembered : public qncomm::testing::QnctlFixture {
  protected:
    Ended Connect() const { return Run({"connect", "--port", Printer()}); }
};

TEST_F(Remembered, ByTheNextRunWhichDoesNotSearch) {
    StartSimulator({"--baud", "57600", "--uart", "2"});
    EXPECT_THAT(Connect().err, HasSubstr("Searching... 57600,m,8,2"));
    const Ended again = Connect();
    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(again.err, "Printer connected through UART2: at 57600, None, 8, 2, No Flowcontrol\n");
    EXPECT_THAT(again.out, HasSubstr("UART2"));
    EXPECT_THAT(SettingsText(), HasSubstr("[Connection " + Printer() + "]"));
    EXPECT_THAT(SettingsText(), HasSubstr("Baud1=9600\n"));
}

TEST_F(Remembered, WithModelAndFirmwareWhichOneLineProves) {
    StartSimulator();
    const Ended first = Run({"info", "--port", Printer()});
    const Ended again = Run({"info", "--port", Printer(), "--trace", PathOf("trace")});
    EXPECT_EQ(again.out, first.out);
    const std::string trace = HostFile("trace");
    const std::size_t nonsense = trace.find(R"("tx","bytes":")(\r\n")");
    EXPECT_NE(nonsense, std::string::npos) << "in case something stands in the input line\n"
                                           << trace;
    EXPECT_EQ(trace.find(R"("tx")"), nonsense);
    EXPECT_EQ(trace.find(R"("tx")", nonsense + 1), trace.rfind(R"("tx")")) << trace;
}

TEST_F(Remembered, AndFoundAgainAtAnotherRateWhichIsSaid) {
    StartSimulator();
    EXPECT_EQ(Connect().status, 0);
    StartSimulator({"--baud", "19200"});
    const Ended changed = Connect();
    EXPECT_EQ(changed.status, 0);
    EXPECT_THAT(changed.err,
                HasSubstr("The remembered settings 9600,n,8,2 were not answered. Searching...\n"));
    EXPECT_THAT(changed.out, HasSubstr("19200,N,8,2"));
    EXPECT_THAT(Connect().err, Not(HasSubstr("Searching")));
}

TEST_F(Remembered, ForItsOwnAddressAlone) {
    StartSimulator({"--baud", "19200"});
    EXPECT_EQ(Run({"connect", "--port", "sim:R7G?baud=57600"}).status, 0);
    EXPECT_THAT(Connect().err, HasSubstr("Searching... 9600,m,8,2"));
}

} // namespace
