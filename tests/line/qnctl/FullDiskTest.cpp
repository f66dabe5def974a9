// Every file that the command line writes, on a disk that is full or becomes so: a status, a word,
// and what stood there before. The disk is one of the kernel's own, a few pages long, in a
// namespace of the program's; where the system gives nobody such a disk, no file may grow.

#include "TransferFixture.h"

#include <filesystem>
#include <map>

namespace qncomm::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ContainsRegex;
using ::testing::Eq;
using ::testing::HasSubstr;

/// Makes the disk, gives it what "before" holds and no room but some KiB, runs the program, and
/// leaves in "after" what the disk then holds.
constexpr const char* Script = R"(
folder=$1 room=$2 output=$3 own=$4; shift 4
disk=$folder/disk
[ "$own" = 0 ] || mount -t tmpfs -o size=512k none "$disk" || exit 125
cp -a "$folder/before/." "$disk"
if [ "$own" = 1 ]; then
    cat /dev/zero > "$disk/fill" 2> /dev/null
    truncate -s -"$room"K "$disk/fill"
fi
(
    [ "$own" = 1 ] || ulimit -f "$room"
    [ -z "$output" ] || exec > "$disk/$output"
    exec "$@"
)
status=$?
rm -f "$disk/fill"
cp -a "$disk/." "$folder/after"
exit $status
)";

using Files = std::map<std::string, std::string>;

struct Written {
    const char* name;
    Arguments command; ///< of qnctl; "@" is the disk's folder
    int roomKiB;
    const char* said; ///< on the error stream
    std::string left; ///< the one new file that may be there afterwards; none when empty
    const char* port = nullptr;
    const char* output = ""; ///< the file that the standard output goes to
    int status = 1;
};

std::ostream& operator<<(std::ostream& out, const Written& written) {
    return out << written.name;
}

class FullDisk : public TransferFixture, public ::testing::WithParamInterface<Written> {
  protected:
    void SetUp() override {
        for (const char* name : {"before", "disk", "after"})
            MakeFolder(name);
        WriteHostFile("before/old", Old);
        WriteHostFile("before/my.ini", Settings);
        WriteHostFile("big", Content(100'000));
        PrinterOnPty();
        ASSERT_EQ(Carry({"kermit", "send", PathOf("big"), "c:BIG", "--quiet"}).status, 0);
        TypeLine("10 PRINT 1");
        if (GetParam().port != nullptr) SetPort(OnDisk(GetParam().port));
    }

    std::string OnDisk(std::string text) const {
        const std::string disk = PathOf("disk");
        for (auto at = text.find('@'); at != std::string::npos; at = text.find('@', at))
            text.replace(at, 1, disk + "/");
        return text;
    }
    /// Whether this user may have a disk of one program's own.
    bool OwnDisk() const {
        return Program({"unshare", "-rm", "mount", "-t", "tmpfs", "none", PathOf("disk")}).Wait()
               == 0;
    }
    Ended RunOnDisk() const {
        const Written& written = GetParam();
        const bool own = OwnDisk();
        std::cout << "figure: " << (own ? "a disk of its own" : "a limit of the files' size")
                  << '\n';
        Arguments wrapper;
        if (own) wrapper = {"unshare", "-rm"};
        for (const std::string& word :
             {std::string("bash"), std::string("-c"), std::string(Script), std::string("bash"),
              PathOf(""), std::to_string(written.roomKiB), std::string(written.output),
              std::string(own ? "1" : "0")})
            wrapper.push_back(word);
        Arguments command;
        for (const std::string& word : written.command)
            command.push_back(OnDisk(word));
        const auto program = Start(OnPort(command), Program::Stdio::Pipes, wrapper);
        program->Type("PRINT 6*7\n"); // who reads no input leaves it
        program->CloseInput();
        return EndedOf(*program, WatchdogMs);
    }
    Files After() const {
        Files files;
        for (const auto& entry : fs::recursive_directory_iterator(PathOf("after")))
            if (entry.is_regular_file()) {
                const std::string name = fs::relative(entry.path(), PathOf("after")).string();
                files[name] = HostFile("after/" + name);
            }
        return files;
    }

    static constexpr int WatchdogMs = 45'000;
    static constexpr const char* Old = "as it was\n";
    static constexpr const char* Settings = "; mine\n[Settings]\nCommport=1\n";
};

TEST_P(FullDisk, IsAStatusAWordAndWhatStoodThere) {
    const Ended ended = RunOnDisk();
    EXPECT_EQ(ended.status, GetParam().status) << ended.err;
    EXPECT_THAT(ended.err, ContainsRegex(GetParam().said));
    Files after = After();
    EXPECT_THAT(after["old"], Eq(Old));
    EXPECT_THAT(after["my.ini"], Eq(Settings));
    for (const auto& [name, content] : after)
        EXPECT_TRUE(name == "old" || name == "my.ini" || name == "my.ini.lock"
                    || name == GetParam().left || fs::path(name).begin()->string() == "state")
            << name << " is left with " << content.size() << " bytes";
    SetPort(Printer());
    EXPECT_EQ(Carry({"send", "PRINT 7"}).out, "7\n") << "the printer is at its prompt";
}

constexpr const char* NoRoom = "(o space left on device|ile too large)";
constexpr const char* State = "sim:R7G?state=@state";

INSTANTIATE_TEST_SUITE_P(
    Of, FullDisk,
    ::testing::Values(
        Written{"AReceivedFile", {"kermit", "receive", "c:BIG", "@old"}, 16, NoRoom, ""},
        Written{
            "AReceivedFileWithNoRoomAtAll", {"kermit", "receive", "c:BIG", "@new"}, 0, NoRoom, ""},
        Written{"WhatIsKeptToResume",
                {"kermit", "receive", "c:BIG", "@old", "--resume"},
                16,
                NoRoom,
                "old.part"},
        Written{"ATrace", {"info", "--trace", "@trace"}, 0, NoRoom, "trace"},
        Written{"ATraceInATransfer",
                {"kermit", "receive", "c:BIG", "@../got", "--trace", "@trace"},
                16,
                NoRoom,
                "trace"},
        Written{"ACapture", {"terminal", "--capture", "@capture"}, 0, NoRoom, "capture"},
        Written{"Settings", {"connect", "--remember", "--settings", "@my.ini"}, 0, NoRoom, ""},
        Written{
            "AMacro", {"macros", "set", "F1", "text", "X", "--settings", "@my.ini"}, 0, NoRoom, ""},
        Written{"AFileForSupport", {"support", "@old"}, 0, NoRoom, ""},
        Written{"AListedProgram", {"program", "list", "@old"}, 0, "[Dd]isk full", ""},
        Written{
            "APrintersState", {"kermit", "send", "@../big", "c:NEW"}, 64, "Device full", "", State},
        Written{"APrintersSetup",
                {"setup", "set", "LABEL,WIDTH", "444"},
                0,
                "the state cannot be kept",
                "",
                State,
                "",
                4},
        Written{"TheOutput", {"files", "c:"}, 0, NoRoom, "out", nullptr, "out"}),
    [](const auto& written) { return written.param.name; });

TEST_F(TransferFixture, ARedactedTraceNeedsRoomForAllOfIt) {
    PrinterInProcess();
    ASSERT_EQ(Carry({"info", "--trace", PathOf("trace")}).status, 0);
    WriteHostFile("old", "as it was\n");
    SetPort("sim:R7G");
    const Ended ended = RunLimited(0, {"trace", "redact", PathOf("trace"), PathOf("old")});
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.err, HasSubstr("ile too large"));
    EXPECT_EQ(HostFile("old"), "as it was\n");
}

} // namespace
} // namespace qncomm::testing
