#include "terminal/Terminal.h"

#include <gmock/gmock.h>

namespace {

using qncomm::Terminal;
using qncomm::terminal::CaptureFile;
using qncomm::terminal::CaptureOpening;
using qncomm::terminal::CaptureResult;
using qncomm::terminal::CaptureStatus;
using testing::ElementsAre;
using testing::IsEmpty;

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

TEST(CaptureWithoutAWayToOpenFiles, IsRefused) {
    Terminal terminal;
    EXPECT_EQ(terminal.StartCapture("log").status, CaptureStatus::Unsupported);
    EXPECT_FALSE(terminal.IsCapturing());
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
