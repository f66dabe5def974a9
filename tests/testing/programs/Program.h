#pragma once

#include "platform/Fd.h"

#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace qncomm::testing {

/// A program that runs beside the test. Every wait ends with what it waits for, with the program,
/// or with a limit that only a hang reaches; whatever still runs at the end is ended.
class Program {
  public:
    static constexpr int AnyTime = -1;

    enum class Stdio {
        Pipes,    ///< input, output and errors apart from each other
        Terminal, ///< all three on one pseudo-terminal, which is the program's own
    };

    /// Starts the program at once; variables come on top of this process's environment.
    Program(std::vector<std::string> command, Stdio stdio = Stdio::Pipes,
            std::vector<std::string> variables = {});
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void Type(std::string_view text);
    void CloseInput() { mInput.Reset(); }
    void Signal(int signal) const;

    /// Waits until the text has come on the output (in Terminal mode: anything shown) or on the
    /// error stream; false when the program ended before.
    bool WaitForOut(std::string_view text) { return WaitFor(mOut, text); }
    /// The same for a text that comes behind another one.
    bool WaitForOut(std::string_view before, std::string_view text);
    bool WaitForErr(std::string_view text) { return WaitFor(mErr, text); }

    /// Waits for the program's end; its exit status, or 1000 and the signal's number. A program
    /// that needs longer than mostMs hangs, whatever it shows meanwhile.
    int Wait(int mostMs = AnyTime);

    pid_t Pid() const { return mPid; }
    const std::string& Out() const { return mOut; }
    const std::string& Err() const { return mErr; }
    /// The largest resident size, known after Wait.
    long PeakKb() const { return mPeakKb; }
    /// Its number as long as it runs.
    pid_t Process() const { return mPid; }
    /// This side of the pseudo-terminal.
    int Terminal() const { return mInput.Get(); }

  private:
    void StartChild(const std::vector<std::string>& command,
                    const std::vector<std::string>& variables, int in, int out, int err,
                    bool terminal);
    bool WaitFor(const std::string& stream, std::string_view text);
    bool ReadMore(int limitMs);

    pid_t mPid = -1;
    qncomm::Fd mInput;
    qncomm::Fd mOutEnd;
    qncomm::Fd mErrEnd;
    std::string mOut;
    std::string mErr;
    long mPeakKb = 0;
};

} // namespace qncomm::testing
