// Whatever a command names as a file may be something else: each place of a file with each kind of
// thing in it ends at once with a status and a word, and the thing stays what it was.

#include "TransferFixture.h"

#include "testing/line/PtyPair.h"

#include <array>
#include <filesystem>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace qncomm::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ContainsRegex;

/// What stands in the file's place, a letter each.
constexpr char Pipe = 'p';
constexpr char Folder = 'f';
constexpr char Socket = 's';
constexpr char Device = 'd';  ///< a link to a pseudo-terminal
constexpr char Circle = 'c';  ///< a link to itself
constexpr char Nowhere = 'n'; ///< a link into a folder that is not there

struct Row {
    const char* name;
    const char* program;
    Arguments command; ///< "@" is the place
    const char* kinds; ///< that are refused there
    int status;
    const char* said;        ///< on the error stream, or as a diagnosis
    const char* ending = ""; ///< what stands there has the place's name and this ending
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.name;
}

class Places : public TransferFixture, public ::testing::WithParamInterface<Row> {
  protected:
    void SetUp() override {
        WriteHostFile("DATA", "10 PRINT 1\n");
        PrinterInProcess();
        ASSERT_EQ(Carry({"kermit", "send", PathOf("DATA"), "c:DATA"}).status, 0);
        WriteHostFile("trace", "");
    }

    std::string Filled(std::string text) const {
        for (const auto& [sign, path] :
             {std::pair{'@', Place}, {'%', std::string("state")}, {'#', std::string("trace")}})
            for (auto at = text.find(sign); at != std::string::npos; at = text.find(sign))
                text.replace(at, 1, PathOf(path));
        return text;
    }
    std::string Object() const { return PathOf(Place + std::string(GetParam().ending)); }

    void Make(char kind) const {
        const std::string path = Object();
        fs::remove_all(path);
        switch (kind) {
        case Pipe:
            ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
            break;
        case Folder:
            fs::create_directory(path);
            break;
        case Device:
            fs::create_symlink(mDevice.path, path);
            break;
        case Circle:
            fs::create_symlink(fs::path(path).filename(), path);
            break;
        case Nowhere:
            fs::create_symlink("/nowhere/at/all", path);
            break;
        default:
            sockaddr_un address{};
            address.sun_family = AF_UNIX;
            path.copy(address.sun_path, sizeof address.sun_path - 1);
            const Fd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
            ASSERT_EQ(::bind(socket.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address),
                      0);
        }
    }
    Ended RunRow() const {
        Arguments command{QN_PROGRAMS "/" + std::string(GetParam().program)};
        for (const std::string& word : GetParam().command)
            command.push_back(Filled(word));
        Program program(command, Program::Stdio::Pipes,
                        {"XDG_CONFIG_HOME=" + PathOf(""), "HOME=" + PathOf("")});
        program.CloseInput();
        return EndedOf(program, WatchdogMs);
    }

  private:
    static constexpr int WatchdogMs = 20'000;
    inline static const std::string Place = "place";

    PtyPair mDevice = OpenPty();
};

TEST_P(Places, RefuseWhatIsNoFile) {
    for (const char kind : std::string_view(GetParam().kinds)) {
        SCOPED_TRACE(kind);
        Make(kind);
        struct stat before {};
        ASSERT_EQ(::lstat(Object().c_str(), &before), 0);
        const Ended ended = RunRow();
        EXPECT_EQ(ended.status, GetParam().status) << ended.err;
        EXPECT_THAT(ended.err + ended.out, ContainsRegex(GetParam().said));
        struct stat after {};
        ASSERT_EQ(::lstat(Object().c_str(), &after), 0) << "it is gone";
        EXPECT_EQ(after.st_ino, before.st_ino) << "something else stands there";
        EXPECT_EQ(after.st_mode, before.st_mode);
    }
}

constexpr const char* Sim = "sim:R7G";
constexpr const char* Kept = "sim:R7G?state=%";
constexpr const char* NotThis = "(this is a (pipe|folder|socket|device)|symbolic links)";
constexpr const char* NoStream = "(this is a folder|nobody reads this pipe|symbolic links|no such)";

INSTANTIATE_TEST_SUITE_P(
    Of, Places,
    ::testing::Values(
        Row{"SettingsToRead", "qnctl", {"ports", "--settings", "@"}, "pfsd", 0, NotThis},
        Row{"Settings",
            "qnctl",
            {"macros", "set", "F1", "text", "X", "--settings", "@"},
            "pfsc",
            1,
            NotThis},
        Row{"SettingsLock",
            "qnctl",
            {"macros", "set", "F1", "text", "X", "--settings", "@"},
            "pfsdcn",
            1,
            "place.lock: ",
            ".lock"},
        Row{"Trace", "qnctl", {"info", "--port", Sim, "--trace", "@"}, "pfscn", 2, NoStream},
        Row{"Labels",
            "qnctl",
            {"info", "--port", Sim, "--labels", "@"},
            "psdcn",
            4,
            "labels cannot be written to "},
        Row{"State",
            "qnctl",
            {"info", "--port", "sim:R7G?state=@"},
            "psdcn",
            4,
            "the state cannot be kept in "},
        Row{"Port", "qnctl", {"info", "--port", "@"}, "pfscn", 4, "Port COM16 "},
        Row{"PortToLookAt", "qnctl", {"doctor", "@"}, "pfscn", 4, "fail"},
        Row{"FileToSend",
            "qnctl",
            {"kermit", "send", "@", "--port", Sim},
            "pfsdcn",
            1,
            "error 1011: "},
        Row{"FileForBinary",
            "qnctl",
            {"binary", "send", "@", "--protocol", "zmodem", "--port", Sim},
            "pfsdcn",
            1,
            "error 1011: "},
        Row{"ReceivedFile",
            "qnctl",
            {"kermit", "receive", "c:DATA", "@", "--port", Kept},
            "pfsd",
            1,
            NotThis},
        Row{"ResumedFile",
            "qnctl",
            {"kermit", "receive", "c:DATA", "@", "--resume", "--port", Kept},
            "pfsdcn",
            1,
            NotThis,
            ".part"},
        Row{"FileToLoad", "qnctl", {"fileload", "@", "--port", Sim}, "pfsdcn", 1, "error 1013: "},
        Row{"Module",
            "qnctl",
            {"module", "upload", "@", "--port", Sim},
            "pfsdcn",
            1,
            "error 1020: "},
        Row{"Font", "qnctl", {"font", "install", "@", "--port", Sim}, "pfsdcn", 1, "error 1016: "},
        Row{"Image",
            "qnctl",
            {"image", "install", "@", "--port", Sim},
            "pfsdcn",
            1,
            "error 1013: "},
        Row{"PrintedImage",
            "qnctl",
            {"image", "print", "@", "--port", Sim},
            "pfsdcn",
            1,
            "error 1013: "},
        Row{"ListedProgram",
            "qnctl",
            {"program", "list", "@", "--port", Sim},
            "pfs",
            1,
            "error 75: "},
        Row{"TraceToRead",
            "qnctl",
            {"trace", "redact", "@", "#"},
            "pfsdcn",
            1,
            "(this is a |symbolic links|no such)"},
        Row{"RedactedTrace", "qnctl", {"trace", "redact", "#", "@"}, "pfs", 1, NoStream},
        Row{"Batch", "qnctl", {"batch", "@", "--port", Sim}, "fscn", 2, NoStream},
        Row{"FileForSupport", "qnctl", {"support", "@", "--port", Sim}, "pfs", 1, NoStream},
        Row{"Capture",
            "qnctl",
            {"terminal", "--capture", "@", "--port", Sim},
            "pfscn",
            1,
            "error 7[56]: "},
        Row{"Replay",
            "qnsim",
            {"--replay", "@"},
            "pfsdcn",
            2,
            "(this is a |symbolic links|no such)"},
        Row{"LinkOfTheVirtualPrinter", "qnsim", {"--link", "@"}, "pfs", 4, "cannot make the link "},
        Row{"StateOfTheVirtualPrinter",
            "qnsim",
            {"--state", "@"},
            "psdcn",
            4,
            "the state cannot be kept in "},
        Row{"LabelsOfTheVirtualPrinter",
            "qnsim",
            {"--labels", "@"},
            "psdcn",
            4,
            "labels cannot be written to "}),
    [](const auto& row) { return row.param.name; });

// -- Other users' files

/// What another user left where a command looks.
struct Foreign {
    const char* name;
    Arguments command; ///< "@" is the folder
    const char* file;
    const char* linkTo;  ///< it is a link to this; a file of its own when empty
    unsigned mode;       ///< its permissions
    const char* refused; ///< what is said where the owner is another one
};

std::ostream& operator<<(std::ostream& out, const Foreign& foreign) {
    return out << foreign.name;
}

class OtherUsers : public TransferFixture, public ::testing::WithParamInterface<Foreign> {};

TEST_P(OtherUsers, FilesAreNeitherTrustedNorTouched) {
    const Foreign& foreign = GetParam();
    WriteHostFile("DATA", "what the printer holds\n");
    PrinterInProcess();
    ASSERT_EQ(Carry({"kermit", "send", PathOf("DATA"), "c:DATA"}).status, 0);
    WriteHostFile("target", "another one's\n");
    const std::string path = PathOf(foreign.file);
    if (*foreign.linkTo != '\0')
        fs::create_symlink(PathOf(foreign.linkTo), path);
    else
        WriteHostFile(foreign.file, "another one's\n");
    constexpr unsigned nobody = 65534;
    const bool another = ::lchown(path.c_str(), nobody, nobody) == 0;
    if (*foreign.linkTo == '\0') fs::permissions(path, fs::perms(foreign.mode));
    Arguments command;
    for (const std::string& word : foreign.command)
        command.push_back(word.starts_with('@') ? PathOf(word.substr(1)) : word);
    const Ended ended = Carry(command);
    // The superuser alone can stage another owner; anybody can stage what others may write.
    const bool refused = another || (foreign.mode & 022U) != 0;
    EXPECT_EQ(ended.status, refused ? 1 : 0) << ended.err;
    if (!refused) return;
    EXPECT_THAT(ended.err, ContainsRegex(foreign.refused));
    EXPECT_EQ(HostFile(foreign.file), "another one's\n");
    EXPECT_EQ(HostFile("target"), "another one's\n");
}

const Arguments Resume{"kermit", "receive", "c:DATA", "@got", "--resume"};
const Arguments Receive{"kermit", "receive", "c:DATA", "@got"};

INSTANTIATE_TEST_SUITE_P(
    Of, OtherUsers,
    ::testing::Values(
        Foreign{"BrokenTransfer", Resume, "got.part", "", 0600, "it belongs to another user"},
        Foreign{"BrokenTransferThatAllMayWrite", Resume, "got.part", "", 0666,
                "(other users may write it|it belongs to another user)"},
        Foreign{"LinkInTheFilesPlace", Receive, "got", "target", 0, "this is another user's link"},
        Foreign{"LinkInTheResumedFilesPlace", Resume, "got", "target", 0,
                "this is another user's link"},
        Foreign{"LinkOfTheSettings",
                {"connect", "--remember", "--settings", "@my.ini"},
                "my.ini",
                "target",
                0,
                "this is another user's link"}),
    [](const auto& foreign) { return foreign.param.name; });

} // namespace
} // namespace qncomm::testing
