// ls, cp, mv, rm, cat, put, get, run: what people type without looking it up.
#include "testing/programs/QnctlFixture.h"

#include <filesystem>

namespace {

using qncomm::testing::Ended;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const char* Program = "10 PRINT \"from here\"\n20 END\n";

class Verbs : public qncomm::testing::QnctlFixture {
  protected:
    void SetUp() override { StartSimulator(); }

    Ended Do(qncomm::testing::Arguments arguments, std::string_view input = {}) const {
        arguments.insert(arguments.end(), {"--port", Printer()});
        return Run(arguments, input);
    }
    std::string Listed(const std::string& place) const { return Do({"ls", place}).out; }
};

TEST_F(Verbs, LsNamesFilesSoThatOtherVerbsTakeThem) {
    EXPECT_THAT(Listed("rom:"), HasSubstr("rom:DEMO.PRG\n"));
    EXPECT_EQ(Listed("ROM:d*.p?g"), "rom:DEMO.PRG\n");
    EXPECT_THAT(Do({"ls"}).out, HasSubstr("rom:DEMO.PRG\n"));
    EXPECT_THAT(Do({"ls", "-l", "rom:"}).out, HasSubstr("  rom:DEMO.PRG\n"));
    EXPECT_EQ(Do({"ls", "rom:DEMO.PRG", "--json"}).Document().at("files").at(0).at("name"),
              "rom:DEMO.PRG");
    const Ended none = Do({"ls", "rom:*.XYZ"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.err, "qnctl: There is no file rom:*.XYZ.\n");
    EXPECT_EQ(Do({"ls", "nowhere:"}).status, 1);
}

TEST_F(Verbs, APlaceWithoutADeviceIsAnsweredWithOneThatHasIt) {
    const Ended ended = Do({"rm", "OLD.PRG"});
    EXPECT_EQ(ended.status, 2);
    EXPECT_THAT(ended.err, HasSubstr("\"OLD.PRG\" names no device of the printer; \"c:OLD.PRG\""));
}

TEST_F(Verbs, CpMvAndRmTakeSeveralFilesAndPatterns) {
    ASSERT_EQ(Do({"cp", "rom:DEMO.PRG", "tmp:A.PRG"}).status, 0);
    ASSERT_EQ(Do({"cp", "rom:DEMO.PRG", "tmp:B.PRG"}).status, 0);
    ASSERT_EQ(Do({"mv", "tmp:*.PRG", "c:"}).status, 0);
    EXPECT_THAT(Listed("tmp:"), IsEmpty());
    EXPECT_EQ(Listed("c:?.PRG"), "c:A.PRG\nc:B.PRG\n");
    ASSERT_EQ(Do({"mv", "c:A.PRG", "c:NEW.PRG"}).status, 0);
    EXPECT_EQ(Do({"mv", "c:B.PRG", "c:NEW.PRG", "tmp:ONE"}).status, 2);

    const Ended asked = Do({"rm", "c:*.PRG"});
    EXPECT_EQ(asked.status, 1);
    EXPECT_THAT(asked.err,
                HasSubstr("Delete 3 files: c:B.PRG, c:NEW.PRG, c:STARTUP.PRG? [y/N] no"));
    EXPECT_EQ(Do({"rm", "c:", "--yes"}).status, 2);
    EXPECT_EQ(Do({"rm", "c:*.PRG", "--yes"}).status, 0);
    EXPECT_THAT(Listed("c:"), Not(HasSubstr(".PRG")));
}

TEST_F(Verbs, WhatThePrinterRefusesKeepsNoOtherFileBack) {
    ASSERT_EQ(Do({"cp", "rom:DEMO.PRG", "tmp:A.PRG"}).status, 0);
    const Ended ended = Do({"rm", "tmp:NONE.PRG", "tmp:A.PRG"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.err, StartsWith("qnctl: tmp:NONE.PRG was not deleted: "));
    EXPECT_THAT(ended.err, HasSubstr("1 file of 2 was not deleted."));
    EXPECT_THAT(Listed("tmp:"), IsEmpty());
}

TEST_F(Verbs, PutChoosesByWhatAFileHolds) {
    WriteHostFile("label.prg", Program);
    WriteHostFile("prices.dat", std::string("\0\1\2 prices", 10));
    ASSERT_EQ(Do({"put", PathOf("label.prg"), PathOf("prices.dat"), "c:"}).status, 0);
    // A module is kept as the printer lists it, other bytes as they are.
    EXPECT_EQ(Do({"cat", "c:prices.dat"}).out, std::string("\0\1\2 prices", 10));
    EXPECT_THAT(Do({"cat", "c:label.prg"}).out, HasSubstr("10 PRINT \"from here\"\r\n"));
    ASSERT_EQ(Do({"put", "--by", "kermit", PathOf("label.prg"), "tmp:RAW"}).status, 0);
    EXPECT_EQ(Do({"cat", "tmp:RAW"}).out, Program);

    WriteHostFile("wrong.prg", "10 PRINT \"x\n20 NOSUCH\n");
    const Ended wrong = Do({"put", PathOf("wrong.prg"), "c:"});
    EXPECT_EQ(wrong.status, 1);
    EXPECT_THAT(wrong.err, HasSubstr("wrong.prg:2: error 19: "));
    EXPECT_THAT(Listed("c:"), Not(HasSubstr("wrong.prg")));
    EXPECT_THAT(Do({"put", PathOf("none"), "c:"}).err, HasSubstr("There is no file "));
    EXPECT_EQ(Do({"put", "c:"}).status, 2);
}

TEST_F(Verbs, GetFetchesToAFolderAFileOrHere) {
    WriteHostFile("a.dat", "first");
    WriteHostFile("b.dat", "second");
    ASSERT_EQ(Do({"cp", PathOf("a.dat"), PathOf("b.dat"), "c:"}).status, 0);
    std::filesystem::create_directory(PathOf("out"));
    ASSERT_EQ(Do({"get", "c:*.dat", PathOf("out")}).status, 0);
    EXPECT_EQ(HostFile("out/a.dat") + HostFile("out/b.dat"), "firstsecond");
    ASSERT_EQ(Do({"cp", "c:a.dat", PathOf("one")}).status, 0);
    EXPECT_EQ(HostFile("one"), "first");
    EXPECT_EQ(Do({"get", "c:*.dat", PathOf("one")}).status, 2);
    EXPECT_EQ(Do({"get", "c:none", PathOf("out")}).status, 1);
    ASSERT_EQ(Do({"put", PathOf("a.dat"), "c:.profile"}).status, 0);
    ASSERT_EQ(Do({"get", "c:.profile", PathOf("out")}).status, 0);
    EXPECT_EQ(HostFile("out/_profile"), "first");
    EXPECT_EQ(Do({"cp", PathOf("a.dat"), PathOf("other")}).status, 2);
}

TEST_F(Verbs, RunStartsAProgramOfThePrinterOrOfThisMachine) {
    WriteHostFile("label.prg",
                  "10 OPEN \"tmp:RAN\" FOR OUTPUT AS 1\n20 PRINT#1,\"x\"\n30 CLOSE 1\n");
    ASSERT_EQ(Do({"run", PathOf("label.prg")}).status, 0);
    EXPECT_THAT(Listed("tmp:"), HasSubstr("tmp:RAN\n"));
    ASSERT_EQ(Do({"rm", "tmp:RAN"}).status, 0);
    ASSERT_EQ(Do({"run", "tmp:label.prg"}).status, 0);
    EXPECT_THAT(Listed("tmp:"), HasSubstr("tmp:RAN\n"));
    EXPECT_EQ(Do({"run", "tmp:NONE.PRG"}).status, 1);
}

TEST_F(Verbs, ATerminalIsToldWhatWasDoneHowMuchAndHowFast) {
    WriteHostFile("prices.dat", "1 2 3");
    const auto program = Start({"put", PathOf("prices.dat"), "c:", "--port", Printer()},
                               qncomm::testing::Program::Stdio::Terminal);
    EXPECT_EQ(program->Wait(), 0) << program->Out();
    EXPECT_THAT(program->Out(), HasSubstr("prices.dat -> c:prices.dat, by Kermit: 5 bytes in "));
}

class Syncs : public Verbs {
  protected:
    void SetUp() override {
        Verbs::SetUp();
        std::filesystem::create_directory(PathOf("labels"));
        WriteHostFile("labels/one.prg", Program);
        WriteHostFile("labels/two.dat", "2");
        WriteHostFile("labels/.hidden", "not for the printer");
    }
    Ended Sync(qncomm::testing::Arguments more = {}) const {
        more.insert(more.begin(), {"sync", PathOf("labels"), "tmp:"});
        return Do(more);
    }
};

TEST_F(Syncs, SendWhatDiffersAndNothingElse) {
    EXPECT_EQ(Sync({"--dry-run"}).out, "one.prg: new\ntwo.dat: new\n2 of 2 files to send\n");
    EXPECT_THAT(Listed("tmp:"), IsEmpty());
    EXPECT_EQ(Sync({"--read-back"}).out, "2 of 2 files sent\n");
    EXPECT_EQ(Listed("tmp:"), "tmp:one.prg\ntmp:two.dat\n");
    EXPECT_EQ(Sync().out, "0 of 2 files sent\n");

    std::filesystem::last_write_time(PathOf("labels/one.prg"),
                                     std::filesystem::file_time_type::clock::now());
    EXPECT_EQ(Sync({"--dry-run"}).out, "0 of 2 files to send\n");
    WriteHostFile("labels/two.dat", "3");
    EXPECT_EQ(Sync({"--dry-run"}).out, "two.dat: changed\n1 of 2 files to send\n");
    EXPECT_EQ(Sync({"--json"}).status, 0);
    EXPECT_EQ(Do({"cat", "tmp:two.dat"}).out, "3");
}

TEST_F(Syncs, LookAtThePrinterToo) {
    ASSERT_EQ(Sync().status, 0);
    ASSERT_EQ(Do({"rm", "tmp:two.dat"}).status, 0);
    ASSERT_EQ(Do({"cp", "rom:DEMO.PRG", "tmp:one.prg"}).status, 0);
    EXPECT_EQ(Sync({"--dry-run"}).out, "one.prg: changed on the printer\n"
                                       "two.dat: missing on the printer\n2 of 2 files to send\n");
}

TEST_F(Syncs, AFolderThatIsNoneOrAPlaceThatIsNoDeviceIsRefused) {
    EXPECT_EQ(Do({"sync", PathOf("none"), "tmp:"}).status, 1);
    EXPECT_EQ(Do({"sync", PathOf("labels"), "tmp:X"}).status, 2);
    EXPECT_EQ(Do({"sync", PathOf("labels"), "tmp"}).status, 2);
}

} // namespace
