// What a program has open is its own: nothing that it starts gets any of it.

#include "testing/programs/QnctlFixture.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using qncomm::testing::Program;
using testing::Contains;
using testing::HasSubstr;
using testing::Key;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

constexpr int FirstOwn = 3; // behind the standard streams

/// What a process has open beside its standard streams, by what it is called, with its flags.
std::map<std::string, unsigned> OpenIn(pid_t process) {
    const fs::path folder = fs::path("/proc") / std::to_string(process);
    std::map<std::string, unsigned> open;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder / "fd")) {
        const std::string number = entry.path().filename();
        if (std::stoi(number) < FirstOwn) continue;
        std::ifstream info(folder / "fdinfo" / number);
        std::string word;
        unsigned flags = 0;
        while (info >> word && word != "flags:") {
        }
        info >> std::oct >> flags;
        open[fs::read_symlink(entry.path())] = flags;
    }
    return open;
}

class Descriptors : public qncomm::testing::QnctlFixture {
  protected:
    Descriptors() {
        for (const auto& [name, flags] : OpenIn(::getpid()))
            if ((flags & static_cast<unsigned>(O_CLOEXEC)) == 0) mInherited.insert(name);
    }

    /// Looks at all that the program has open and was not given.
    void AreItsOwn(const std::map<std::string, unsigned>& open) const {
        for (const auto& [name, flags] : open) {
            const bool own = (flags & static_cast<unsigned>(O_CLOEXEC)) != 0;
            EXPECT_TRUE(own || mInherited.contains(name)) << name;
        }
    }

  private:
    std::set<std::string> mInherited;
};

TEST_F(Descriptors, OfATerminalWithTraceAndCaptureArePassedToNobody) {
    StartSimulator();
    const auto program = Start({"terminal", "--port", Printer(), "--trace", PathOf("trace"),
                                "--capture", PathOf("capture")},
                               Program::Stdio::Terminal);
    ASSERT_TRUE(program->WaitForOut("Ctrl-] ends.")) << program->Out();
    const auto open = OpenIn(program->Process());
    AreItsOwn(open);
    EXPECT_THAT(open, Contains(Key(fs::read_symlink(Printer()).string())));
    EXPECT_THAT(open, Contains(Key(PathOf("trace"))));
    EXPECT_THAT(open, Contains(Key(PathOf("capture"))));
    AreItsOwn(OpenIn(Simulator().Process()));
}

TEST_F(Descriptors, OfARemotePortArePassedToNobody) {
    StartSimulator({"--rfc2217", "0"});
    const std::string& said = Simulator().Out();
    const auto program =
        Start({"terminal", "--port", said.substr(0, said.find('\n'))}, Program::Stdio::Terminal);
    ASSERT_TRUE(program->WaitForOut("Ctrl-] ends.")) << program->Out();
    for (const auto& open : {OpenIn(program->Process()), OpenIn(Simulator().Process())}) {
        AreItsOwn(open);
        EXPECT_THAT(open, Contains(Key(StartsWith("socket:"))));
    }
}

TEST_F(Descriptors, OfAVirtualPrinterThatKeepsItsStateArePassedToNobody) {
    StartSimulator({"--state", PathOf("state"), "--labels", PathOf("labels")});
    ASSERT_EQ(Run({"send", "PRINT 7", "--port", Printer()}).out, "7\n");
    const auto open = OpenIn(Simulator().Process());
    AreItsOwn(open);
    EXPECT_THAT(open, Contains(Key(StartsWith("/dev/"))));
}

TEST_F(Descriptors, WhatAMacroStartsHasStandardStreamsAlone) {
    StartSimulator();
    WriteHostFile("look", "#!/bin/sh\nls -l /proc/$$/fd > " + PathOf("seen") + "\n");
    ASSERT_EQ(::chmod(PathOf("look").c_str(), 0700), 0);
    ASSERT_EQ(::mkfifo(PathOf("seen").c_str(), 0600), 0);
    ASSERT_EQ(Run({"macros", "set", "F1", "run", PathOf("look")}).status, 0);
    const auto program = Start({"key", "F1", "--port", Printer(), "--trace", PathOf("trace")});
    ASSERT_EQ(program->Wait(), 0) << program->Err();
    const std::string seen = HostFile("seen"); // until what was started has said all
    EXPECT_THAT(seen, Not(HasSubstr("pts"))) << "the port";
    EXPECT_THAT(seen, Not(HasSubstr("trace")));
    EXPECT_THAT(seen, Not(HasSubstr("settings")));
    EXPECT_THAT(seen, HasSubstr("2 -> /dev/null"));
}

} // namespace
