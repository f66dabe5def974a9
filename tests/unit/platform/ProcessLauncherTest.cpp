#include "platform/ProcessLauncher.h"

#include "platform/Fd.h"
#include "testing/core/ScratchFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

using Kind = LaunchResult::Kind;

/// Starts a program that tells through a named pipe how it was called; reading waits for its end.
class Launching : public ::testing::Test {
  protected:
    Launching() {
        EXPECT_EQ(::mkfifo(mFolder.File("told").c_str(), 0600), 0);
        Script("program", "#!/bin/sh\n"
                          "{ pwd; for word in \"$@\"; do printf '<%s>' \"$word\"; done; } > '"
                              + mFolder.File("told") + "'\n");
    }

    void Script(const std::string& name, const std::string& text) const {
        const std::string path = mFolder.Write(name, text);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }

    /// Launches and returns what the program told.
    std::optional<std::string> Told(const LaunchRequest& request) {
        mResult = ProcessLauncher().Launch(request);
        if (mResult.kind != Kind::Started) return std::nullopt;
        const Fd pipe(::open(mFolder.File("told").c_str(), O_RDONLY | O_CLOEXEC));
        std::string told;
        std::array<char, 256> part{};
        for (ssize_t got = 0; (got = ::read(pipe.Get(), part.data(), part.size())) > 0;)
            told.append(part.data(), static_cast<std::size_t>(got));
        return told;
    }

    std::string Here() const { return std::filesystem::canonical(mFolder.Path()).string() + "\n"; }

    ScratchFolder mFolder;
    LaunchResult mResult;
};

TEST_F(Launching, ArgumentsArriveAsTheyStandInTheFolder) {
    EXPECT_EQ(
        Told({mFolder.File("program"), {"a b", "$(id)", "*", ";", "\"q\"", ""}, mFolder.Path()}),
        Here() + "<a b><$(id)><*><;><\"q\"><>");
}

TEST_F(Launching, LeavesNoZombieBehind) {
    EXPECT_TRUE(Told({mFolder.File("program"), {}, {}}).has_value());
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(Launching, BackslashesOfAStoredMacroAreTakenForSlashes) {
    std::string path = mFolder.File("program");
    std::string folder = mFolder.Path();
    for (std::string* text : {&path, &folder})
        for (char& c : *text)
            if (c == '/') c = '\\';
    EXPECT_EQ(Told({path, {"x"}, folder}), Here() + "<x>");
}

TEST_F(Launching, AFileWhoseNameHoldsABackslashIsItself) {
    Script("a\\b", "#!/bin/sh\nprintf odd > '" + mFolder.File("told") + "'\n");
    EXPECT_EQ(Told({mFolder.File("a\\b"), {}, {}}), "odd");
}

TEST_F(Launching, AProgramWithoutAFolderIsSearchedFor) {
    EXPECT_EQ(Told({"sh", {"-c", "printf found > '" + mFolder.File("told") + "'"}, {}}), "found");
}

TEST_F(Launching, TellsWhyAProgramDoesNotStart) {
    mFolder.Write("plain", "text");
    Told({mFolder.File("missing"), {}, {}});
    EXPECT_EQ(mResult.kind, Kind::NotFound);
    EXPECT_EQ(mResult.systemError, ENOENT);
    Told({"no-such-program-of-any-name", {}, {}});
    EXPECT_EQ(mResult.kind, Kind::NotFound);
    Told({mFolder.File("plain"), {}, {}});
    EXPECT_EQ(mResult.kind, Kind::Refused);
    EXPECT_EQ(mResult.systemError, EACCES);
    EXPECT_EQ(mResult.text, mFolder.File("plain") + ": Permission denied");
    Told({mFolder.File("program"), {}, mFolder.File("nowhere")});
    EXPECT_EQ(mResult.kind, Kind::Refused);
    EXPECT_EQ(mResult.text, mFolder.File("nowhere") + ": No such file or directory");
}

} // namespace
} // namespace qncomm::testing
