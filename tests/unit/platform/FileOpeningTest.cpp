#include "platform/FileOpening.h"

#include "testing/core/ScratchFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

namespace fs = std::filesystem;

class OpenedFiles : public ::testing::Test {
  protected:
    std::string Pipe() {
        const std::string path = mFolder.File("pipe");
        EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0);
        return path;
    }
    std::string WhyNotRead(const std::string& path, const FileRules& rules = {}) {
        return OpenToRead(path, rules, mFile).text;
    }
    std::string WhyNotWritten(const std::string& path, const FileRules& rules = {}) {
        return OpenToWrite(path, FileStart::Empty, rules, 0644, mFile).text;
    }

    ScratchFolder mFolder;
    Fd mFile;
};

TEST_F(OpenedFiles, AreRegularUnlessStreamsAreAskedFor) {
    const std::string pipe = Pipe();
    EXPECT_EQ(WhyNotRead(pipe), pipe + ": this is a pipe");
    EXPECT_EQ(WhyNotWritten(pipe), pipe + ": this is a pipe");
    EXPECT_EQ(WhyNotRead("/dev/null"), "/dev/null: this is a device");
    EXPECT_EQ(WhyNotWritten("/dev/null"), "/dev/null: this is a device");
    EXPECT_EQ(WhyNotRead(mFolder.Path()), mFolder.Path() + ": this is a folder");
    EXPECT_FALSE(mFile);
    EXPECT_EQ(WhyNotRead("/dev/null", {.streams = true}), "");
    EXPECT_EQ(WhyNotWritten("/dev/null", {.streams = true}), "");
    EXPECT_EQ(WhyNotRead(mFolder.Path(), {.streams = true}), mFolder.Path() + ": this is a folder");
}

TEST_F(OpenedFiles, DoNotWaitForTheOtherEndOfAPipe) {
    const std::string pipe = Pipe();
    EXPECT_EQ(WhyNotWritten(pipe, {.streams = true}), pipe + ": nobody reads this pipe");
    EXPECT_EQ(WhyNotRead(pipe, {.streams = true}), "");
    std::string text = "x";
    EXPECT_TRUE(ReadWholeFile(pipe, {.streams = true}, text).Ok());
    EXPECT_EQ(text, "");
}

TEST_F(OpenedFiles, AreNoLargerThanTheirReaderBears) {
    const std::string path = mFolder.Write("f", "12345678");
    std::string text;
    EXPECT_TRUE(ReadWholeFile(path, {.limit = 8}, text).Ok());
    EXPECT_EQ(text, "12345678");
    EXPECT_EQ(ReadWholeFile(path, {.limit = 7}, text).systemNumber, EFBIG);
    EXPECT_EQ(text, "");
    EXPECT_EQ(WhyNotWritten(path, {.limit = 7}), path + ": file too large");
    EXPECT_EQ(mFolder.Read("f"), "12345678") << "it was judged before it was emptied";
}

TEST_F(OpenedFiles, WithoutASizeAreReadToTheLimitAndNoFurther) {
    std::string text;
    EXPECT_TRUE(ReadWholeFile("/proc/self/maps", {}, text).Ok());
    EXPECT_GT(text.size(), 1000U);
    EXPECT_EQ(ReadWholeFile("/proc/self/maps", {.limit = 1000}, text).systemNumber, EFBIG);
    EXPECT_EQ(ReadWholeFile("/dev/zero", {.streams = true, .limit = 1000}, text).systemNumber,
              EFBIG);
}

TEST_F(OpenedFiles, FollowLinksOnlyWhereThatIsAllowed) {
    mFolder.Write("f", "x");
    fs::create_symlink("f", mFolder.File("link"));
    EXPECT_EQ(WhyNotRead(mFolder.File("link")), "");
    EXPECT_EQ(OpenToRead(mFolder.File("link"), {.links = false}, mFile).systemNumber, ELOOP);
    EXPECT_EQ(OpenToWrite(mFolder.File("link"), FileStart::Kept, {.links = false}, 0600, mFile)
                  .systemNumber,
              ELOOP);
}

TEST_F(OpenedFiles, StartWhereTheyAreToldTo) {
    const std::string path = mFolder.Write("f", "abc");
    const auto writeX = [&](FileStart start) {
        Fd fd;
        EXPECT_TRUE(OpenToWrite(path, start, {}, 0644, fd).Ok());
        EXPECT_EQ(WriteAll(fd.Get(), "x"), 0);
    };
    writeX(FileStart::Kept);
    EXPECT_EQ(mFolder.Read("f"), "xbc");
    writeX(FileStart::End);
    EXPECT_EQ(mFolder.Read("f"), "xbcx");
    writeX(FileStart::Empty);
    EXPECT_EQ(mFolder.Read("f"), "x");
}

} // namespace
} // namespace qncomm::testing
