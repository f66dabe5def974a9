#include "testing/line/LinePeer.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace qncomm::testing {

std::unique_ptr<LinePeer> LinePeer::Start(int line, const std::string& sFolder,
                                          std::vector<std::string> arguments) {
    ::fcntl(line, F_SETFL, ::fcntl(line, F_GETFL) & ~O_NONBLOCK);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, line, STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, line, STDOUT_FILENO);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addchdir_np(&actions, sFolder.c_str());
    std::vector<char*> words;
    for (std::string& argument : arguments)
        words.push_back(argument.data());
    words.push_back(nullptr);
    pid_t pid = -1;
    const int failed =
        ::posix_spawnp(&pid, words.front(), &actions, nullptr, words.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (failed == 0) return std::unique_ptr<LinePeer>(new LinePeer(pid));
    EXPECT_EQ(std::getenv("CI"), nullptr) << arguments[0] << " is not installed";
    std::cout << arguments[0] << " is not installed: nothing was proven here\n";
    return nullptr;
}

LinePeer::~LinePeer() {
    if (mPid < 0) return;
    ::kill(mPid, SIGKILL);
    ::waitpid(mPid, nullptr, 0);
}

int LinePeer::Wait() {
    int status = 0;
    ::waitpid(std::exchange(mPid, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace qncomm::testing
