#pragma once

#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

namespace qncomm::testing {

/// Another program at the far side of a line, in a folder of its own. It is ended with the object.
class LinePeer {
  public:
    /// Starts arguments[0], looked up in PATH, with the descriptor as its input and output. When it
    /// is not installed, says so in a line, fails the test in CI, and returns nothing.
    static std::unique_ptr<LinePeer> Start(int line, const std::string& sFolder,
                                           std::vector<std::string> arguments);
    ~LinePeer();
    LinePeer(const LinePeer&) = delete;
    LinePeer& operator=(const LinePeer&) = delete;

    /// Waits for the program's end and returns its exit status, or -1 after a signal.
    int Wait();

  private:
    explicit LinePeer(pid_t pid) : mPid(pid) {}

    pid_t mPid;
};

} // namespace qncomm::testing
