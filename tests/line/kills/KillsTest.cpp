// A program that is killed at any of its system calls leaves every file as it was or as it was to
// become, and the next run goes on as if nothing had been. A run is watched first: which files it
// changes, and that each is replaced as a whole. Then it is killed at one system call after
// another.
//
// QN_FIRST: the system call that the kills begin with, from 1; QN_STEP: how many calls further the
// next one is. Without them there are a few, spread over the run.

#include "testing/core/ScratchFolder.h"
#include "testing/programs/Program.h"
#include "testing/programs/TracedProgram.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <sys/stat.h>

namespace qncomm::testing {
namespace {

namespace fs = std::filesystem;

using Arguments = std::vector<std::string>;
using Names = std::set<std::string>;

constexpr std::string_view Qnctl = QN_PROGRAMS "/qnctl";
constexpr std::string_view TraceName = "line.trace"; // grows, and is cut short by a kill

struct Case {
    const char* name;
    Arguments arguments; ///< of qnctl; "@NAME" is a path in the folder
};

std::ostream& operator<<(std::ostream& out, const Case& which) {
    return out << which.name;
}

const Case Cases[] = {
    {"Connect", {"connect"}},
    {"SetMacro", {"macros", "set", "F1", "text", "PRINT 1^M"}},
    {"ReceiveOverOld", {"kermit", "receive", "c:BIG", "@old"}},
    {"ReceiveTraced", {"--trace", "@line.trace", "kermit", "receive", "c:BIG", "@new"}},
    {"Send", {"kermit", "send", "@old", "c:SENT"}},
    {"SendOverOld", {"kermit", "send", "@old", "c:BIG"}},
    {"Fileload", {"fileload", "@old"}},
    {"ListProgram", {"program", "list", "@old"}},
    {"SetSetup", {"setup", "set", "LABEL,WIDTH", "444"}},
    {"Copy", {"copy", "c:BIG", "card1:COPY"}},
    {"SaveProgram", {"program", "save", "c:MINE.PRG"}},
    {"Format", {"--yes", "format", "c:"}},
};

/// A file as it stood.
struct Version {
    std::string content; ///< without what differs from run to run
    ino_t inode = 0;     ///< 0: there was none
    mode_t mode = 0;
    off_t size = 0;
    long nanoseconds = 0; ///< of its last change
};
using Versions = std::map<std::string, std::vector<Version>>;

/// A folder with settings, a host's file and a printer's state, as a user has them, and runs in it.
class Place {
  public:
    explicit Place(const Case& which) {
        WriteSettings();
        fs::copy(NewState(), mFolder.File("state"), fs::copy_options::recursive);
        mFolder.Write("state/c/f-BIG", std::string(9000, '\x11') + std::string(300, 'x'));
        mFolder.Write("old", "10 PRINT \"as it was\"\r\n");
        fs::permissions(mFolder.File("old"), fs::perms(0640));
        mArguments = which.arguments;
    }

    TracedEnd RunTraced(const BeforeCall& before) const {
        return testing::RunTraced(CommandLine(mArguments), before);
    }
    /// Runs to its end; the exit status and what was said.
    std::pair<int, std::string> Run() const { return RunOther(mArguments); }
    std::pair<int, std::string> RunOther(const Arguments& arguments) const {
        Program program(CommandLine(arguments));
        program.CloseInput();
        const int status = program.Wait();
        return {status, program.Out() + program.Err()};
    }

    Names Files() const {
        Names names;
        for (const auto& entry : fs::recursive_directory_iterator(mFolder.Path()))
            if (entry.is_regular_file())
                names.insert(fs::relative(entry.path(), mFolder.Path()).string());
        return names;
    }
    Version VersionOf(const std::string& name) const {
        struct stat facts {};
        if (::stat(mFolder.File(name).c_str(), &facts) != 0) return {};
        return {Comparable(mFolder.Read(name)), facts.st_ino, facts.st_mode, facts.st_size,
                facts.st_mtim.tv_nsec};
    }
    /// Whether the file is another one, or another length, than that.
    bool Differs(const std::string& name, const Version& version) const {
        struct stat facts {};
        if (::stat(mFolder.File(name).c_str(), &facts) != 0) return version.inode != 0;
        return facts.st_ino != version.inode || facts.st_size != version.size
               || facts.st_mtim.tv_nsec != version.nanoseconds;
    }
    bool Has(std::string_view name) const { return mFolder.Has(name); }

  private:
    /// The bytes, but for the time of day and the folder's own name.
    std::string Comparable(std::string text) const {
        const std::string& path = mFolder.Path();
        for (auto at = text.find(path); at != std::string::npos; at = text.find(path))
            text.replace(at, path.size(), "FOLDER");
        constexpr std::string_view key = "\nAnswered=";
        const std::size_t at = text.find(key);
        if (at != std::string::npos) text.erase(at, text.find('\n', at + 1) - at);
        return text;
    }
    /// The folder of a printer that has just been made, as its first run leaves it.
    static std::string NewState() {
        static const ScratchFolder folder;
        if (folder.IsEmpty())
            Program({std::string(Qnctl), "--settings", folder.File("settings.ini"), "--port",
                     "sim:R7G?state=" + folder.File("state"), "devices"})
                .Wait();
        return folder.File("state");
    }
    /// More than a page, so that a write in parts would show.
    void WriteSettings() const {
        std::string settings = "; mine\n[Settings]\nCommport=1\n[Mine]\n";
        for (int key = 0; key < 400; ++key)
            settings += "Key" + std::to_string(key) + "=value of a key that stays\n";
        mFolder.Write("settings.ini", settings);
        fs::permissions(mFolder.File("settings.ini"), fs::perms(0600));
    }
    Arguments CommandLine(const Arguments& arguments) const {
        Arguments line{std::string(Qnctl), "--quiet",
                       "--settings",       mFolder.File("settings.ini"),
                       "--port",           "sim:R7G?state=" + mFolder.File("state")};
        for (const std::string& argument : arguments)
            line.push_back(argument.starts_with('@') ? mFolder.File(argument.substr(1)) : argument);
        return line;
    }

    ScratchFolder mFolder;
    Arguments mArguments;
};

/// What a whole run does, as it is seen before each of its system calls.
struct Watched {
    Versions versions; ///< of the files that were there before or are there behind it
    Names files;       ///< those that are there behind it
    long calls = 0;
};

/// Adds what differs by now. A file that comes has not been there before, and one may go for a
/// while.
void Look(const Place& place, Versions& versions) {
    const Names files = place.Files();
    for (const std::string& name : files)
        versions.try_emplace(name, 1, Version{});
    for (auto& [name, known] : versions)
        if (place.Differs(name, known.back())) known.push_back(place.VersionOf(name));
}

Watched Watch(const Case& which) {
    const Place place(which);
    Watched watched;
    const Names before = place.Files();
    for (const std::string& name : before)
        watched.versions[name].push_back(place.VersionOf(name));
    const TracedEnd end = place.RunTraced([&](long) {
        Look(place, watched.versions);
        return false;
    });
    EXPECT_EQ(end.status, 0);
    Look(place, watched.versions);
    watched.calls = end.calls;
    watched.files = place.Files();
    std::erase_if(watched.versions, [&](const auto& file) {
        const bool passing = !before.contains(file.first) && !watched.files.contains(file.first);
        return passing || file.first == TraceName || file.first.ends_with(".lock");
    });
    return watched;
}

long Setting(const char* name, long otherwise) {
    const char* const value = std::getenv(name);
    return value == nullptr ? otherwise : std::strtol(value, nullptr, 10);
}

class Kills : public ::testing::TestWithParam<Case> {
  protected:
    /// Every file that counts is one of its versions, or missing as it was for a while.
    static void ExpectWhole(const Place& place, const Watched& watched) {
        for (const auto& [name, versions] : watched.versions) {
            const Version now = place.VersionOf(name);
            const bool known = std::ranges::any_of(versions, [&](const Version& version) {
                return version.content == now.content && version.mode == now.mode
                       && (version.inode == 0) == (now.inode == 0);
            });
            EXPECT_TRUE(known || IsGrown(now, versions.front()))
                << name << " holds " << now.content.size() << " bytes";
        }
    }
    /// Settings with all of the user's own and whole lines: a run that begins with what a killed
    /// one has learnt adds other ones.
    static bool IsGrown(const Version& now, const Version& first) {
        const std::size_t own = first.content.find("[Mine]");
        return own != std::string::npos && now.content.ends_with('\n') && now.mode == first.mode
               && now.content.find(first.content.substr(own)) != std::string::npos;
    }

    /// The same command goes through, and what the killed one left is cleared.
    static void ExpectNextRunWorks(const Place& place, const Watched& watched) {
        if (place.Has(TraceName)) {
            const auto [status, said] =
                place.RunOther({"trace", "redact", "@line.trace", "@redacted"});
            EXPECT_EQ(status, 0) << said;
        }
        const auto [status, said] = place.Run();
        EXPECT_EQ(status, 0) << said;
        Names files = place.Files();
        files.erase("redacted");
        EXPECT_EQ(files, watched.files);
    }
};

TEST_P(Kills, NeverTearAFileAndTheNextRunWorks) {
    const Watched watched = Watch(GetParam());
    for (const auto& [name, versions] : watched.versions)
        for (std::size_t at = 1; at < versions.size(); ++at)
            EXPECT_NE(versions[at].inode, versions[at - 1].inode)
                << name << " is written where it stands";

    const long step = Setting("QN_STEP", std::max(1L, watched.calls / 4));
    int survived = 0;
    for (long call = Setting("QN_FIRST", 1 + step / 2); call <= watched.calls; call += step) {
        const Place place(GetParam());
        // And once more, in the midst of clearing up.
        for (const long at : {call, 1 + call * 7919 % watched.calls}) {
            SCOPED_TRACE("killed before system call " + std::to_string(at) + " of "
                         + std::to_string(watched.calls));
            survived += place.RunTraced([at](long now) { return now == at; }).killed ? 1 : 0;
            ExpectWhole(place, watched);
        }
        ExpectNextRunWorks(place, watched);
        if (HasFailure()) return;
    }
    std::cout << "figure: " << GetParam().name << ": " << survived << " kills survived\n";
    EXPECT_GT(survived, 0);
}

INSTANTIATE_TEST_SUITE_P(Commands, Kills, ::testing::ValuesIn(Cases),
                         [](const auto& chosen) { return chosen.param.name; });

} // namespace
} // namespace qncomm::testing
