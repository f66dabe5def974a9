#include "assembly/CaptureFiles.h"

#include "terminal/Terminal.h"
#include "testing/core/ScratchFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace {

using qncomm::Terminal;
using qncomm::terminal::CaptureResult;
using qncomm::terminal::CaptureStatus;
using testing::ElementsAre;
using testing::HasSubstr;

namespace fs = std::filesystem;

Terminal::Options CapturingToFiles() {
    Terminal::Options options;
    options.captureOpener = qncomm::OpenCaptureFile;
    return options;
}

class CaptureToDisk : public testing::Test {
  protected:
    std::string PathOf(const std::string& name) const { return mFolder.File(name); }

    static std::string Content(const std::string& path) { return qncomm::testing::ContentOf(path); }

  private:
    qncomm::testing::ScratchFolder mFolder;
};

TEST_F(CaptureToDisk, WritesWhatIsShownByteForByteAsItComes) {
    Terminal terminal(CapturingToFiles());
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
    Terminal terminal(CapturingToFiles());
    ASSERT_TRUE(terminal.StartCapture(PathOf("log")).Ok());
    terminal.Write("new");
    EXPECT_EQ(Content(PathOf("log")), "old new");
}

TEST_F(CaptureToDisk, EndsWhenItIsStopped) {
    Terminal terminal(CapturingToFiles());
    ASSERT_TRUE(terminal.StartCapture(PathOf("log")).Ok());
    terminal.StopCapture();
    terminal.Write("unseen");
    EXPECT_FALSE(terminal.IsCapturing());
    EXPECT_EQ(terminal.CapturePath(), "");
    EXPECT_EQ(Content(PathOf("log")), "");
}

TEST_F(CaptureToDisk, GoesOnInANewPath) {
    Terminal terminal(CapturingToFiles());
    ASSERT_TRUE(terminal.StartCapture(PathOf("one")).Ok());
    terminal.Write("first");
    ASSERT_TRUE(terminal.StartCapture(PathOf("two")).Ok());
    terminal.Write("second");
    EXPECT_EQ(Content(PathOf("one")), "first");
    EXPECT_EQ(Content(PathOf("two")), "second");
}

TEST_F(CaptureToDisk, KeepsTheOldFileWhenTheNewOneCannotBeOpened) {
    Terminal terminal(CapturingToFiles());
    ASSERT_TRUE(terminal.StartCapture(PathOf("one")).Ok());
    const CaptureResult result = terminal.StartCapture(PathOf("missing/two"));
    EXPECT_EQ(result.status, CaptureStatus::Missing);
    EXPECT_NE(result.systemNumber, 0);
    EXPECT_THAT(result.text, HasSubstr("No such file"));
    terminal.Write("first");
    EXPECT_EQ(Content(PathOf("one")), "first");
}

TEST_F(CaptureToDisk, RefusesAFolder) {
    Terminal terminal(CapturingToFiles());
    const CaptureResult result = terminal.StartCapture(PathOf(""));
    EXPECT_EQ(result.status, CaptureStatus::Unsupported);
    EXPECT_FALSE(terminal.IsCapturing());
}

TEST_F(CaptureToDisk, RefusesAnEmptyPath) {
    Terminal terminal(CapturingToFiles());
    EXPECT_EQ(terminal.StartCapture("").status, CaptureStatus::Missing);
}

TEST(CaptureToTheFullDevice, EndsOnceAndTheTerminalGoesOn) {
    constexpr const char* FullDevice = "/dev/full";
    if (!fs::exists(FullDevice)) FAIL() << "this system has no device that is always full";
    Terminal terminal(CapturingToFiles());
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

} // namespace
