// The doctor as a person calls it: its table, its status, what it mends, and the file for support.
#include "testing/programs/QnctlFixture.h"

namespace {

using qncomm::testing::Ended;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Doctor : public qncomm::testing::QnctlFixture {};

/// The result of the row of that name in a document.
std::string Result(const nlohmann::json& document, const std::string& name) {
    for (const auto& row : document["checks"])
        if (row["name"] == name) return row["result"];
    return {};
}

TEST_F(Doctor, ShowsARowForEachCheckAndAVerdictWithItsCommand) {
    const Ended healthy = Run({"doctor", "sim:R7G"});
    EXPECT_EQ(healthy.status, 0);
    EXPECT_THAT(healthy.out, HasSubstr("opening      pass  It opens at"));
    EXPECT_THAT(healthy.out, HasSubstr("The printer answers: R7G at 9600,N,8,2."));
    EXPECT_THAT(healthy.out, EndsWith("\n  qnctl info --port sim:R7G\n"));
    EXPECT_THAT(healthy.err, IsEmpty());
}

TEST_F(Doctor, EndsWithTheStatusThatACommandWouldEndWith) {
    EXPECT_EQ(Run({"doctor", "/dev/no-such-tty"}).status, 4);
    EXPECT_EQ(Run({"doctor", "/dev/null"}).status, 4);
    EXPECT_EQ(Run({"doctor", "nonsense"}).status, 2);
    EXPECT_EQ(Run({"doctor"}).status, 2);
    EXPECT_EQ(Run({"doctor", "--as", "9600,x", "sim:R7G"}).status, 2);
}

TEST_F(Doctor, TellsOfARunningProgramWithoutTypingAndStopsItOnlyWhenAsked) {
    StartSimulator({"--baud", "9600"});
    StartTalking();
    const Ended running = Run({"doctor", Printer(), "--as", "9600,n,8,2", "--json"});
    EXPECT_EQ(running.status, 3);
    EXPECT_EQ(running.Document()["verdict"], "running");
    EXPECT_EQ(Result(running.Document(), "answer"), "skipped");
    EXPECT_THAT(running.err, IsEmpty());
    const Ended again = Run({"doctor", Printer(), "--as", "9600,n,8,2", "--json"});
    EXPECT_EQ(again.Document()["verdict"], "running") << "nothing was stopped";
    const Ended fixed = Run({"doctor", Printer(), "--as", "9600,n,8,2", "--json", "--fix"});
    EXPECT_EQ(fixed.status, 0);
    EXPECT_EQ(fixed.Document()["verdict"], "healthy");
    EXPECT_EQ(fixed.Document()["fixed"], "The program was stopped by Ctrl-C.");
}

TEST_F(Doctor, KeepsNothingOfWhatItLearns) {
    EXPECT_EQ(Run({"doctor", "sim:R7G?baud=38400"}).status, 0);
    EXPECT_FALSE(HasHostFile("qncomm/settings.ini"));
}

TEST_F(Doctor, PacksAFileForSupport) {
    const Ended packed = Run({"support", PathOf("case.json"), "--port", "sim:R7G"});
    EXPECT_EQ(packed.status, 0);
    EXPECT_THAT(packed.out, HasSubstr("case.json"));
    const auto document = nlohmann::json::parse(HostFile("case.json"));
    EXPECT_THAT(document["versions"]["qnctl"].get<std::string>(), Not(IsEmpty()));
    EXPECT_EQ(document["doctor"]["verdict"], "healthy");
    EXPECT_EQ(document["trace"][0]["kind"], "event");
    EXPECT_THAT(document["trace"].dump(), HasSubstr("PRINT"));
}

TEST_F(Doctor, PacksAFileAlsoWhereNoPrinterIsThere) {
    EXPECT_EQ(Run({"support", PathOf("case.json"), "--port", "/dev/no-such-tty"}).status, 0);
    const auto document = nlohmann::json::parse(HostFile("case.json"));
    EXPECT_EQ(document["doctor"]["verdict"], "missing");
    EXPECT_EQ(Run({"support", PathOf("no/such/folder.json"), "--port", "sim:R7G"}).status, 1);
}

} // namespace
