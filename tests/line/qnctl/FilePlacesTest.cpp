#include "TransferFixture.h"

#include "platform/Fd.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>

namespace qncomm::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

/// What somebody may have put where a command is told to find or leave a file. None of it may hang
/// the program, and none of it is replaced.
class FilePlaces : public TransferFixture {
  protected:
    FilePlaces() {
        PrinterInProcess();
        WriteHostFile("batch", "Baudrate\n");
        WriteHostFile("data", "10 PRINT 1\n");
        EXPECT_EQ(::mkfifo(PathOf("pipe").c_str(), 0600), 0);
        MakeFolder("folder");
    }
};

TEST_F(FilePlaces, RefuseAPipeAndAFolderWithAWord) {
    for (const std::string name : {"pipe", "folder"}) {
        const std::string place = PathOf(name);
        const std::string words = "this is a " + name;
        const std::vector<Arguments> commands{
            {"kermit", "send", place, "c:DATA.PRG"},
            {"kermit", "receive", "c:DATA.PRG", place},
            {"fileload", place},
            {"module", "upload", place},
            {"trace", "redact", place, PathOf("out")},
        };
        ASSERT_EQ(Carry({"kermit", "send", PathOf("data"), "c:DATA.PRG"}).status, 0);
        for (const Arguments& command : commands) {
            const Ended ended = Carry(command);
            EXPECT_EQ(ended.status, 1) << ::testing::PrintToString(command) << ended.err;
        }
        EXPECT_THAT(Carry({"kermit", "receive", "c:DATA.PRG", place}).err, HasSubstr(words));
        EXPECT_THAT(Carry({"trace", "redact", place, PathOf("out")}).err, HasSubstr(words));
        EXPECT_THAT(Run({"ports", "--settings", place}).err, HasSubstr(words));
    }
    EXPECT_TRUE(fs::is_fifo(PathOf("pipe")));
    EXPECT_FALSE(HasHostFile("out"));
}

TEST_F(FilePlaces, ThatTakeAStreamDoNotWaitForItsOtherEnd) {
    const Ended trace = Carry({"info", "--trace", PathOf("pipe")});
    EXPECT_EQ(trace.status, 2);
    EXPECT_THAT(trace.err, HasSubstr(PathOf("pipe") + ": nobody reads this pipe"));
    const Ended batch = Carry({"batch", PathOf("folder")});
    EXPECT_EQ(batch.status, 2);
    EXPECT_THAT(batch.err, HasSubstr("this is a folder"));
    const auto waiting = Start(OnPort({"batch", PathOf("pipe")}));
    const Fd writer(::open(PathOf("pipe").c_str(), O_WRONLY | O_CLOEXEC)); // when it reads
    waiting->Signal(SIGINT);
    EXPECT_EQ(waiting->Wait(), 130) << "it hears Ctrl-C while it waits for a line";
}

TEST_F(FilePlaces, OfASettingsLockAreNotWaitedForEither) {
    ASSERT_EQ(::mkfifo(PathOf("my.ini.lock").c_str(), 0600), 0);
    const Ended ended =
        Run({"connect", "--port", "sim:R7G", "--remember", "--settings", PathOf("my.ini")});
    EXPECT_THAT(ended.err, HasSubstr("my.ini.lock: this is a pipe"));
    EXPECT_FALSE(HasHostFile("my.ini"));
}

} // namespace
} // namespace qncomm::testing
