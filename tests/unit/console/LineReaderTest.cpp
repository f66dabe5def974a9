#include "console/LineReader.h"

#include "common/RuntimeErrors.h"
#include "platform/Fd.h"
#include "platform/FileOpening.h"
#include "platform/PollLoop.h"
#include "testing/core/ExpectRaised.h"
#include "testing/core/ScratchFolder.h"

#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

class LineReaderTest : public ::testing::Test {
  protected:
    /// A reader of that input.
    LineReader& Reading(std::string_view input) {
        EXPECT_TRUE(OpenToRead(mFolder.Write("input", input), {}, mFile).Ok());
        return mReader.emplace(mLoop, mFile.Get());
    }

  private:
    ScratchFolder mFolder;
    PollLoop mLoop;
    Fd mFile;
    std::optional<LineReader> mReader;
};

TEST_F(LineReaderTest, ReadsLinesAndARestWithoutAnEnd) {
    LineReader& reader = Reading("one\n\nthree");
    EXPECT_EQ(reader.ReadLine(), "one");
    EXPECT_EQ(reader.ReadLine(), "");
    EXPECT_EQ(reader.ReadLine(), "three");
    EXPECT_EQ(reader.ReadLine(), std::nullopt);
}

TEST_F(LineReaderTest, ALineHasAMebibyteAtMost) {
    const std::string longest(LineReader::LongestInputLine, 'x');
    LineReader& reader = Reading(longest + "\nnext\n");
    EXPECT_EQ(reader.ReadLine(), longest);
    EXPECT_EQ(reader.ReadLine(), "next");
    EXPECT_RAISED(Reading(longest + "x\n").ReadLine(), RtInvalidCall);
    EXPECT_RAISED(Reading(longest + "x").ReadLine(), RtInvalidCall) << "its end may never come";
}

TEST_F(LineReaderTest, AnInputThatCannotBeReadIsNoEnd) {
    PollLoop loop;
    Fd unreadable;
    ASSERT_TRUE(OpenToRead("/proc/self/mem", {}, unreadable).Ok());
    EXPECT_RAISED(LineReader(loop, unreadable.Get()).ReadLine(), RtDeviceIO);
}

} // namespace
} // namespace qncomm::testing
