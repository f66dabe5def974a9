#include "ReceivedFile.h"

#include "testing/core/ScratchFolder.h"
#include "transfer/Crc32Sum.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

namespace fs = std::filesystem;
using transfer::AnswerKind;
using transfer::FileInfo;
using transfer::OfferDecision;

constexpr std::int64_t Date = 1'700'000'000;

/// What a protocol says of a file that it could go on with.
FileInfo Offered(bool compared, std::optional<std::int64_t> date = Date) {
    FileInfo file;
    file.name = "FROM.PRN";
    file.size = 6;
    file.modified = date;
    file.fromAnywhere = true;
    file.compared = compared;
    return file;
}

class Received : public ::testing::Test {
  protected:
    /// A transfer of this file that breaks off behind the bytes.
    void BreakOff(const FileInfo& file, const std::string& bytes) {
        ReceivedFile broken(mTarget, {.resume = true}, [](const FileInfo&) {});
        ASSERT_EQ(broken.Offer(file).kind, AnswerKind::Ok);
        std::string reason;
        ASSERT_TRUE(broken.Write(0, bytes, reason)) << reason;
        ASSERT_TRUE(broken.Close(false, reason));
    }
    /// What the next one says to the offer.
    OfferDecision Next(const FileInfo& file) {
        ReceivedFile next(mTarget, {.resume = true}, [](const FileInfo&) {});
        return next.Offer(file);
    }

    ScratchFolder mFolder;
    std::string mTarget = mFolder.File("f");
};

TEST_F(Received, GoOnWithWhatWasKeptAndItsSumWhereThatIsCompared) {
    BreakOff(Offered(true, {}), "abc");
    EXPECT_EQ(mFolder.Read("f.part"), "abc");
    const OfferDecision decision = Next(Offered(true, {}));
    EXPECT_EQ(decision.offset, 3U);
    transfer::Crc32Sum sum;
    sum.Add("abc");
    EXPECT_EQ(decision.sum, sum.Value());
}

TEST_F(Received, ThatWereOfAnotherFileBeginAnewWhenTheyAreOfferedAgain) {
    BreakOff(Offered(true), "xyz");
    ReceivedFile file(mTarget, {.resume = true}, [](const FileInfo&) {});
    EXPECT_EQ(file.Offer(Offered(true)).offset, 3U);
    FileInfo again = Offered(true);
    again.fromAnywhere = false;
    EXPECT_EQ(file.Offer(again).offset, 0U);
    std::string reason;
    EXPECT_TRUE(file.Write(0, "abcdef", reason) && file.Close(true, reason)) << reason;
    EXPECT_EQ(mFolder.Read("f"), "abcdef");
    EXPECT_EQ(mFolder.Count(), 1U);
}

TEST_F(Received, WithoutASumGoOnByTheirDateAlone) {
    BreakOff(Offered(false), "abc");
    EXPECT_EQ(Next(Offered(false)).offset, 3U);
    EXPECT_EQ(Next(Offered(false, Date + 1)).offset, 0U) << "the sender's file is another one now";
}

TEST_F(Received, WithoutASumAndADateBeginAnew) {
    BreakOff(Offered(false, {}), "abc");
    EXPECT_EQ(Next(Offered(false, {})).offset, 0U);
}

TEST_F(Received, ThatAreLongerThanTheSendersBeginAnew) {
    BreakOff(Offered(true), "abcdefgh");
    EXPECT_EQ(Next(Offered(true)).offset, 0U);
}

TEST_F(Received, DoNotGoOnWithWhatOthersCanReach) {
    BreakOff(Offered(true), "abc");
    ASSERT_EQ(::chmod((mTarget + ".part").c_str(), 0666), 0);
    const OfferDecision decision = Next(Offered(true));
    EXPECT_EQ(decision.kind, AnswerKind::Failed);
    EXPECT_EQ(decision.reason, mTarget + ".part: other users may write it");
    EXPECT_EQ(mFolder.Read("f.part"), "abc");
}

TEST_F(Received, KeepTheModeOfWhatTheyReplaceAndReplaceNoPipe) {
    mFolder.Write("f", "old");
    ASSERT_EQ(::chmod(mTarget.c_str(), 0600), 0);
    std::string reason;
    {
        ReceivedFile file(mTarget, {}, [](const FileInfo&) {});
        ASSERT_EQ(file.Offer(Offered(false)).kind, AnswerKind::Ok);
        ASSERT_TRUE(file.Write(0, "new", reason) && file.Close(true, reason)) << reason;
    }
    EXPECT_EQ(mFolder.Read("f"), "new");
    EXPECT_EQ(fs::status(mTarget).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    fs::remove(mTarget);
    ASSERT_EQ(::mkfifo(mTarget.c_str(), 0600), 0);
    ReceivedFile file(mTarget, {}, [](const FileInfo&) {});
    const OfferDecision refused = file.Offer(Offered(false));
    EXPECT_EQ(refused.kind, AnswerKind::Failed);
    EXPECT_EQ(refused.reason, mTarget + ": this is a pipe");
    EXPECT_TRUE(fs::is_fifo(mTarget));
}

} // namespace
} // namespace qncomm::testing
