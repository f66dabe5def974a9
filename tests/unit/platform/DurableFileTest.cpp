#include "platform/DurableFile.h"

#include "testing/core/ScratchFolder.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class DurableFiles : public ::testing::Test {
  protected:
    static unsigned ModeOf(const std::string& path) {
        struct ::stat there {};
        return ::stat(path.c_str(), &there) == 0 ? there.st_mode & 07777U : 0;
    }

    ScratchFolder mFolder;
    std::string mTarget = mFolder.File("f");
};

/// A process's umask while it lives.
class Umask {
  public:
    explicit Umask(mode_t mask) : mFormer(::umask(mask)) {}
    ~Umask() { ::umask(mFormer); }
    Umask(const Umask&) = delete;
    Umask& operator=(const Umask&) = delete;

  private:
    mode_t mFormer;
};

TEST_F(DurableFiles, TakeTheirTargetsPlaceWhenTheyAreCommitted) {
    mFolder.Write("f", "old");
    DurableFile file;
    ASSERT_TRUE(file.Create(mTarget).Ok());
    ASSERT_TRUE(file.Append("new ").Ok());
    ASSERT_TRUE(file.Append("bytes").Ok());
    EXPECT_EQ(file.Length(), 9U);
    EXPECT_EQ(mFolder.Read("f"), "old");
    ASSERT_TRUE(file.Commit(FileMode::Replaced).Ok());
    EXPECT_FALSE(file);
    EXPECT_EQ(mFolder.Read("f"), "new bytes");
    EXPECT_EQ(mFolder.Count(), 1U);
}

TEST_F(DurableFiles, AreRemovedWhenTheyAreNot) {
    mFolder.Write("f", "old");
    {
        DurableFile file;
        ASSERT_TRUE(file.Create(mTarget).Ok());
        ASSERT_TRUE(file.Append("new").Ok());
        EXPECT_EQ(mFolder.Count(), 2U);
    }
    EXPECT_EQ(mFolder.Read("f"), "old");
    EXPECT_EQ(mFolder.Count(), 1U);
}

TEST_F(DurableFiles, StandUnderANameThatIsNobodyElses) {
    for (const char* name : {"f.new", "f.tmp", "f.part", "f~"})
        mFolder.Write(name, name);
    DurableFile one;
    DurableFile other;
    ASSERT_TRUE(one.Create(mTarget).Ok());
    ASSERT_TRUE(other.Create(mTarget).Ok());
    ASSERT_TRUE(one.Append("one").Ok());
    ASSERT_TRUE(other.Append("other").Ok());
    for (const auto& entry : fs::directory_iterator(mFolder.Path()))
        EXPECT_THAT(entry.path().filename().string(), AnyOf(StartsWith("f"), StartsWith(".")));
    ASSERT_TRUE(other.Commit(FileMode::Replaced).Ok());
    ASSERT_TRUE(one.Commit(FileMode::Replaced).Ok());
    EXPECT_EQ(mFolder.Read("f"), "one");
    for (const char* name : {"f.new", "f.tmp", "f.part", "f~"})
        EXPECT_EQ(mFolder.Read(name), name);
    EXPECT_EQ(mFolder.Count(), 5U);
}

TEST_F(DurableFiles, MayHaveTheLongestNameOfAll) {
    const std::string longest(255, 'n');
    ASSERT_TRUE(ReplaceFile(mFolder.File(longest), "x").Ok());
    EXPECT_EQ(mFolder.Read(longest), "x");
}

TEST_F(DurableFiles, AreTheirOwnersAloneUntilTheyAreInPlace) {
    const Umask mask(0022);
    DurableFile file;
    ASSERT_TRUE(file.Create(mTarget).Ok());
    for (const auto& entry : fs::directory_iterator(mFolder.Path()))
        EXPECT_EQ(ModeOf(entry.path().string()), 0600U);
    ASSERT_TRUE(file.Commit(FileMode::Replaced).Ok());
    EXPECT_EQ(ModeOf(mTarget), 0644U);
}

TEST_F(DurableFiles, GetTheModeThatIsAskedFor) {
    const Umask mask(0027);
    ASSERT_TRUE(ReplaceFile(mTarget, "", FileMode::Replaced).Ok());
    EXPECT_EQ(ModeOf(mTarget), 0640U) << "there was none to keep";
    ASSERT_EQ(::chmod(mTarget.c_str(), 0604), 0);
    ASSERT_TRUE(ReplaceFile(mTarget, "", FileMode::Replaced).Ok());
    EXPECT_EQ(ModeOf(mTarget), 0604U);
    ASSERT_TRUE(ReplaceFile(mTarget, "", FileMode::Private).Ok());
    EXPECT_EQ(ModeOf(mTarget), 0600U);
    DurableFile file;
    ASSERT_TRUE(file.Create(mTarget).Ok());
    ASSERT_TRUE(file.Commit(std::uint32_t{0755}).Ok());
    EXPECT_EQ(ModeOf(mTarget), 0755U);
    EXPECT_EQ(::umask(0027), 0027U) << "the mask was only looked at";
}

TEST_F(DurableFiles, GoOnWithWhatWasKept) {
    {
        DurableFile file;
        ASSERT_TRUE(file.Open(mTarget, ".part").Ok());
        ASSERT_TRUE(file.Append("abcdef").Ok());
        file.Keep();
    }
    EXPECT_EQ(mFolder.Read("f.part"), "abcdef");
    DurableFile file;
    ASSERT_TRUE(file.Open(mTarget, ".part").Ok());
    EXPECT_EQ(file.Length(), 6U);
    ASSERT_TRUE(file.WriteAt(3, "DEFG").Ok());
    EXPECT_EQ(file.Length(), 7U);
    ASSERT_TRUE(file.Commit(FileMode::Replaced).Ok());
    EXPECT_EQ(mFolder.Read("f"), "abcDEFG");
    EXPECT_FALSE(mFolder.Has("f.part"));
}

TEST_F(DurableFiles, OfNamesOfAnyLengthAreKeptAndGoneOnWith) {
    std::vector<std::string> names;
    for (std::size_t length = 249; length <= 255; ++length)
        names.push_back(std::string(length - 1, 'n') + "0");
    names.push_back(std::string(254, 'n') + "1"); // differs at its end alone
    names.push_back(std::string(241, 'n') + "\u00E5\u00E5\u00E5\u00E5\u00E5\u00E5\u00E5");
    for (const std::string& name : names) {
        DurableFile begun;
        ASSERT_TRUE(begun.Open(mFolder.File(name), ".part").Ok()) << name.size();
        EXPECT_EQ(begun.Length(), 0U) << name.size();
        ASSERT_TRUE(begun.Append(name).Ok());
        begun.Keep();
    }
    for (const std::string& name : names) {
        DurableFile file;
        ASSERT_TRUE(file.Open(mFolder.File(name), ".part").Ok());
        ASSERT_TRUE(file.Commit(FileMode::Replaced).Ok());
        EXPECT_EQ(mFolder.Read(name), name);
    }
    EXPECT_TRUE(ReplaceFile(mFolder.File(names[6]), "x").Ok());
}

TEST_F(DurableFiles, CanBeginAgain) {
    DurableFile file;
    mFolder.Write("f.part", "of another file");
    ASSERT_TRUE(file.Open(mTarget, ".part").Ok());
    ASSERT_TRUE(file.Clear().Ok());
    EXPECT_EQ(file.Length(), 0U);
    ASSERT_TRUE(file.Append("x").Ok());
    ASSERT_TRUE(file.SetModified(1'000'000'000).Ok());
    ASSERT_TRUE(file.Commit(FileMode::Replaced).Ok());
    EXPECT_EQ(mFolder.Read("f"), "x");
    struct ::stat there {};
    ASSERT_EQ(::stat(mTarget.c_str(), &there), 0);
    EXPECT_EQ(there.st_mtim.tv_sec, 1'000'000'000);
}

TEST_F(DurableFiles, DoNotFollowALinkThatStandsInTheirWay) {
    mFolder.Write("else", "someone else's");
    fs::create_symlink("else", mFolder.File("f.part"));
    DurableFile file;
    EXPECT_EQ(file.Open(mTarget, ".part").systemNumber, ELOOP);
    EXPECT_EQ(mFolder.Read("else"), "someone else's");
}

TEST_F(DurableFiles, TellWhyAndWhereTheyCannotBeMade) {
    DurableFile file;
    const IoResult missing = file.Create(mFolder.File("none/f"));
    EXPECT_EQ(missing.status, IoStatus::Missing);
    EXPECT_EQ(missing.systemNumber, ENOENT);
    EXPECT_EQ(missing.text, mFolder.File("none/f") + ": no such file or directory");
    const IoResult folder = file.Create(mFolder.Path());
    EXPECT_EQ(folder.systemNumber, EISDIR);
    EXPECT_THAT(folder.text, HasSubstr(mFolder.Path()));
    EXPECT_FALSE(file);
    EXPECT_TRUE(mFolder.IsEmpty());
}

/// What the function returns in a process of its own.
template <class Function>
int InChild(Function function) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(function());
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// Permissions do not stop the superuser, so a child gives that up.
bool BecomeNobody() {
    return ::getuid() != 0 || ::setresuid(65534, 65534, 65534) == 0;
}

TEST_F(DurableFiles, LeaveTheOldOneOnAFullDisk) {
    mFolder.Write("f", "old");
    const int error = InChild([&] {
        const rlimit limit{3, 3}; // bytes in a file; stands for the full disk
        ::signal(SIGXFSZ, SIG_IGN);
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) return 101;
        return ReplaceFile(mTarget, "a longer text").systemNumber;
    });
    EXPECT_EQ(error, EFBIG);
    EXPECT_EQ(mFolder.Read("f"), "old");
    EXPECT_EQ(mFolder.Count(), 1U);
}

TEST_F(DurableFiles, AreWrittenIntoAFolderThatMayNotBeRead) {
    ASSERT_EQ(::chmod(mFolder.Path().c_str(), 0333), 0);
    const int error = InChild([&] {
        if (!BecomeNobody()) return 101;
        return ReplaceFile(mTarget, "x").systemNumber;
    });
    ASSERT_EQ(::chmod(mFolder.Path().c_str(), 0700), 0);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(mFolder.Read("f"), "x");
}

TEST_F(DurableFiles, LeaveALinkAndReplaceWhatItLeadsTo) {
    mFolder.Write("real", "old");
    ASSERT_EQ(::chmod(mFolder.File("real").c_str(), 0604), 0);
    fs::create_symlink("real", mTarget);
    ASSERT_TRUE(SaveFile(mTarget, "saved").Ok());
    EXPECT_EQ(mFolder.Read("real"), "saved");
    ASSERT_TRUE(ReplaceFile(mTarget, "replaced").Ok());
    EXPECT_TRUE(fs::is_symlink(mTarget));
    EXPECT_EQ(mFolder.Read("real"), "replaced");
    EXPECT_EQ(ModeOf(mFolder.File("real")), 0604U);
    EXPECT_EQ(mFolder.Count(), 2U);
}

TEST_F(DurableFiles, DoNotReplaceWhatIsNoFile) {
    ASSERT_EQ(::mkfifo(mTarget.c_str(), 0600), 0);
    const IoResult pipe = ReplaceFile(mTarget, "x");
    EXPECT_EQ(pipe.systemNumber, ENOTSUP);
    EXPECT_EQ(pipe.text, mTarget + ": this is a pipe");
    EXPECT_TRUE(fs::is_fifo(mTarget));
    fs::create_symlink("/dev/null", mFolder.File("device"));
    EXPECT_EQ(ReplaceFile(mFolder.File("device"), "x").text,
              mFolder.File("device") + ": this is a device");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_EQ(mFolder.Count(), 2U);
}

/// What another user of this machine put there; true only for the superuser, who can stage it.
bool GiveAway(const std::string& path) {
    return ::lchown(path.c_str(), 65534, 65534) == 0;
}

TEST_F(DurableFiles, DoNotFollowAnotherUsersLink) {
    mFolder.Write("real", "old");
    fs::create_symlink("real", mTarget);
    const bool another = GiveAway(mTarget);
    EXPECT_EQ(ReplaceFile(mTarget, "new").text,
              another ? mTarget + ": this is another user's link" : "");
    EXPECT_EQ(mFolder.Read("real"), another ? "old" : "new");
}

TEST_F(DurableFiles, StayTheirOwners) {
    mFolder.Write("f", "old");
    const bool another = GiveAway(mTarget);
    ASSERT_TRUE(ReplaceFile(mTarget, "new").Ok());
    struct ::stat there {};
    ASSERT_EQ(::stat(mTarget.c_str(), &there), 0);
    EXPECT_EQ(there.st_uid, another ? 65534U : ::geteuid());
}

TEST_F(DurableFiles, DoNotGoOnWithWhatOthersCanReach) {
    const std::string part = mFolder.Write("f.part", "abc");
    const auto refusal = [&] {
        DurableFile file;
        const IoResult opened = file.Open(mTarget, ".part");
        file.Keep();
        return opened.text;
    };
    ASSERT_EQ(::chmod(part.c_str(), 0620), 0);
    EXPECT_EQ(refusal(), part + ": other users may write it");
    ASSERT_EQ(::chmod(part.c_str(), 0600), 0);
    fs::create_hard_link(part, mFolder.File("second"));
    EXPECT_EQ(refusal(), part + ": it has another name as well");
    fs::remove(mFolder.File("second"));
    EXPECT_EQ(refusal(), "");
    if (GiveAway(part)) {
        EXPECT_EQ(refusal(), part + ": it belongs to another user");
    }
    EXPECT_EQ(mFolder.Read("f.part"), "abc");
}

TEST_F(DurableFiles, HaveOneWriterUnderTheirOwnEnding) {
    DurableFile one;
    ASSERT_TRUE(one.Open(mTarget, ".part").Ok());
    DurableFile other;
    EXPECT_EQ(other.Open(mTarget, ".part").status, IoStatus::Busy);
    ASSERT_TRUE(one.Append("x").Ok());
    one.Keep();
    EXPECT_TRUE(other.Open(mTarget, ".part").Ok());
    EXPECT_EQ(other.Length(), 1U);
}

TEST_F(DurableFiles, AreReadWhileTheyAreWritten) {
    DurableFile file;
    ASSERT_TRUE(file.Open(mTarget, ".part").Ok());
    ASSERT_TRUE(file.Append("abcdef").Ok());
    std::string bytes;
    ASSERT_TRUE(file.ReadAt(2, 3, bytes).Ok());
    EXPECT_EQ(bytes, "cde");
    ASSERT_TRUE(file.ReadAt(4, 100, bytes).Ok());
    EXPECT_EQ(bytes, "ef");
}

TEST_F(DurableFiles, ThatAKilledWriterLeftAreClearedByTheNext) {
    mFolder.Write("f", "old");
    const int signal = InChild([&] {
        DurableFile file;
        if (file.Create(mTarget).Ok() && file.Append("torn").Ok()) ::raise(SIGKILL);
        return 0;
    });
    ASSERT_EQ(signal, 128 + SIGKILL);
    EXPECT_EQ(mFolder.Count(), 2U);
    ASSERT_TRUE(ReplaceFile(mFolder.File("g"), "x").Ok());
    EXPECT_EQ(mFolder.Read("f"), "old");
    EXPECT_EQ(mFolder.Read("g"), "x");
    EXPECT_EQ(mFolder.Count(), 2U);
}

TEST_F(DurableFiles, ThatAreDevicesAreSavedByWritingToThem) {
    EXPECT_TRUE(SaveFile("/dev/null", "x").Ok());
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_EQ(SaveFile("/dev/full", "x").systemNumber, ENOSPC);
    EXPECT_EQ(SaveFile(mFolder.Path(), "x").systemNumber, EISDIR);
}

TEST_F(DurableFiles, ThatStandWhereNoneCanBeMadeAreNotCalledMissing) {
    const int error = SaveFile("/proc/version", "x").systemNumber;
    EXPECT_EQ(error, ::getuid() == 0 ? EROFS : EACCES);
}

TEST_F(DurableFiles, ThatMayNotBeWrittenAreNotReplacedEither) {
    mFolder.Write("f", "old");
    ASSERT_EQ(::chmod(mTarget.c_str(), 0444), 0);
    ASSERT_EQ(::chmod(mFolder.Path().c_str(), 0777), 0);
    const int error = InChild([&] {
        if (!BecomeNobody()) return 101;
        return SaveFile(mTarget, "new").systemNumber;
    });
    EXPECT_EQ(error, EACCES);
    EXPECT_EQ(mFolder.Read("f"), "old");
}

} // namespace
} // namespace qncomm::testing
