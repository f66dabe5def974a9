#pragma once

#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace qncomm::testing {

/// Another program on the far side of a pseudo-terminal in raw mode. It is ended with the object.
class PeerProcess {
  public:
    /// Starts `arguments[0]`, looked up in PATH, in `directory`; its messages go to the file `log`
    /// there.
    PeerProcess(const std::vector<std::string>& arguments, const std::string& directory);
    PeerProcess(const PeerProcess&) = delete;
    PeerProcess& operator=(const PeerProcess&) = delete;
    ~PeerProcess();

    [[nodiscard]] int Descriptor() const { return mMaster; }
    /// What the program wrote, without waiting; empty when nothing.
    std::string Read();
    /// How much was taken, without waiting.
    std::size_t Write(std::string_view bytes);
    /// True when the program has ended; Status is then its exit status or 128 + signal.
    bool HasEnded();
    [[nodiscard]] int Status() const { return mStatus; }
    void Kill();

    static bool IsInstalled(const std::string& sProgram);

  private:
    int mMaster = -1;
    pid_t mPid = -1;
    int mStatus = -1;
};

} // namespace qncomm::testing
