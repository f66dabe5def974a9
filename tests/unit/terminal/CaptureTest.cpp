#include "terminal/Terminal.h"
#include "testing/core/ScratchFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace {

using qncomm::Terminal;
using qncomm::terminal::CaptureFile;
using qncomm::terminal::CaptureOpening;
using qncomm::terminal::CaptureResult;
using qncomm::terminal::CaptureStatus;
using qncomm::terminal::OpenCaptureFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

class CaptureToDisk : public testing::Test {
  protected:
    std::string PathOf(const std::string& name) const { return mFolder.File(name); }

    static std::string Content(const std::string& path) { return qncomm::testing::ContentOf(path); }

  private:
    qncomm::testing::ScratchFolder mFolder;
};

TEST_F(CaptureToDisk, WritesWhatIsShownByteForByteAsItComes) {
    Terminal terminal;
    terminal.Write("before");
    ASSERT_TRUE(terminal.StartCapture(PathOf("log")).Ok());
    EXPECT_TRUE(terminal.IsCapturing());
    EXPECT_EQ(terminal.CapturePath(), PathOf("log"));
    const std::string bytes("a\0\x1A\x1B[31mb\r\n\xFF", 12);
    terminal.Write(bytes);
    EXPECT_EQ(Content(PathOf("log")), bytes) << "flushed while the capture runs";
    terminal.Write("more");
    EXPECT_EQ(Content(PathOf("log")), bytes + "more");
}

TEST_F(CaptureToDisk, AppendsToAFileThatIsThere) {
    std::ofstream(PathOf("log")) << "old ";
    Terminal terminal;
    ASSERT_TRUE(terminal.StartCapture(PathOf("log")).Ok());
    terminal.Write("new");
    EXPECT_EQ(Content(PathOf("log")), "old new");
}

TEST_F(CaptureToDisk, EndsWhenItIsStopped) {
    Terminal terminal;
    ASSERT_TRUE(terminal.StartCapture(PathOf("log")).Ok());
    terminal.StopCapture();
    terminal.Write("unseen");
    EXPECT_FALSE(terminal.IsCapturing());
    EXPECT_EQ(terminal.CapturePath(), "");
    EXPECT_EQ(Content(PathOf("log")), "");
}

TEST_F(CaptureToDisk, GoesOnInANewPath) {
    Terminal terminal;
    ASSERT_TRUE(terminal.StartCapture(PathOf("one")).Ok());
    terminal.Write("first");
    ASSERT_TRUE(terminal.StartCapture(PathOf("two")).Ok());
    terminal.Write("second");
    EXPECT_EQ(Content(PathOf("one")), "first");
    EXPECT_EQ(Content(PathOf("two")), "second");
}

TEST_F(CaptureToDisk, KeepsTheOldFileWhenTheNewOneCannotBeOpened) {
    Terminal terminal;
    ASSERT_TRUE(terminal.StartCapture(PathOf("one")).Ok());
    const CaptureResult result = terminal.StartCapture(PathOf("missing/two"));
    EXPECT_EQ(result.status, CaptureStatus::Missing);
    EXPECT_NE(result.systemNumber, 0);
    EXPECT_THAT(result.text, HasSubstr("No such file"));
    terminal.Write("first");
    EXPECT_EQ(Content(PathOf("one")), "first");
}

TEST_F(CaptureToDisk, RefusesAFolder) {
    Terminal terminal;
    const CaptureResult result = terminal.StartCapture(PathOf(""));
    EXPECT_EQ(result.status, CaptureStatus::Unsupported);
    EXPECT_FALSE(terminal.IsCapturing());
}

TEST_F(CaptureToDisk, RefusesAnEmptyPath) {
    Terminal terminal;
    EXPECT_EQ(terminal.StartCapture("").status, CaptureStatus::Missing);
}

TEST(CaptureToTheFullDevice, EndsOnceAndTheTerminalGoesOn) {
    constexpr const char* FullDevice = "/dev/full";
    if (!fs::exists(FullDevice)) FAIL() << "this system has no device that is always full";
    Terminal terminal;
    std::vector<CaptureStatus> reported;
    terminal.SetCaptureFailureHandler(
        [&](const CaptureResult& result) { reported.push_back(result.status); });
    ASSERT_TRUE(terminal.StartCapture(FullDevice).Ok());
    terminal.Write("one ");
    terminal.Write("two");
    EXPECT_THAT(reported, ElementsAre(CaptureStatus::Full));
    EXPECT_FALSE(terminal.IsCapturing());
    EXPECT_EQ(terminal.Row(1).text, "one two");
    ASSERT_TRUE(terminal.CaptureFailure().has_value());
    EXPECT_THAT(terminal.CaptureFailure()->text, HasSubstr("No space"));
}

/// A disk with space for a number of bytes, and what it has been given.
struct SmallDisk {
    std::size_t space = 0;
    std::string written;
};

class SmallDiskFile final : public CaptureFile {
  public:
    explicit SmallDiskFile(SmallDisk& disk) : mDisk(disk) {}

    CaptureResult Append(std::string_view sBytes) override {
        const std::string_view fits = sBytes.substr(0, mDisk.space - mDisk.written.size());
        mDisk.written += fits;
        if (fits.size() == sBytes.size()) return {};
        return {CaptureStatus::Full, 28, "no space"};
    }

  private:
    SmallDisk& mDisk;
};

Terminal::Options CapturingTo(SmallDisk& disk) {
    Terminal::Options options;
    options.captureOpener = [&disk](const std::string&) {
        return CaptureOpening{std::make_unique<SmallDiskFile>(disk), {}};
    };
    return options;
}

TEST(CaptureToASmallDisk, ReportsTheFullDiskOnceAndCanBeStartedAgain) {
    SmallDisk disk{.space = 6, .written = {}};
    Terminal terminal(CapturingTo(disk));
    std::vector<std::string> reported;
    terminal.SetCaptureFailureHandler(
        [&](const CaptureResult& result) { reported.push_back(result.text); });
    ASSERT_TRUE(terminal.StartCapture("log").Ok());
    for (int i = 0; i < 5; ++i)
        terminal.Write("abcd");
    EXPECT_THAT(reported, ElementsAre("no space"));
    EXPECT_EQ(disk.written, "abcdab");
    EXPECT_EQ(terminal.Row(1).text, "abcdabcdabcdabcdabcd");

    disk.space = 100;
    ASSERT_TRUE(terminal.StartCapture("log").Ok());
    EXPECT_FALSE(terminal.CaptureFailure().has_value());
    terminal.Write("on");
    EXPECT_EQ(disk.written, "abcdabon");
}

TEST(CaptureToASmallDisk, LetsItsHandlerStartAnother) {
    SmallDisk disk{.space = 2, .written = {}};
    Terminal terminal(CapturingTo(disk));
    terminal.SetCaptureFailureHandler([&](const CaptureResult&) {
        disk.space = 100;
        terminal.SetCaptureFailureHandler({});
        EXPECT_TRUE(terminal.StartCapture("other").Ok());
    });
    ASSERT_TRUE(terminal.StartCapture("log").Ok());
    terminal.Write("abcd");
    terminal.Write("ef");
    EXPECT_EQ(terminal.CapturePath(), "other");
    EXPECT_EQ(disk.written, "abef");
}

TEST(CaptureToASmallDisk, WithoutAHandlerIsReadAfterwards) {
    SmallDisk disk{.space = 2, .written = {}};
    Terminal terminal(CapturingTo(disk));
    ASSERT_TRUE(terminal.StartCapture("log").Ok());
    terminal.Write("abcd");
    ASSERT_TRUE(terminal.CaptureFailure().has_value());
    EXPECT_EQ(terminal.CaptureFailure()->status, CaptureStatus::Full);
    EXPECT_EQ(terminal.CaptureFailure()->systemNumber, 28);
}

TEST(CaptureOfNothing, AsksNothingOfTheFile) {
    SmallDisk disk;
    Terminal terminal(CapturingTo(disk));
    ASSERT_TRUE(terminal.StartCapture("log").Ok());
    terminal.Write("");
    EXPECT_TRUE(terminal.IsCapturing());
    EXPECT_THAT(disk.written, IsEmpty());
}

} // namespace
