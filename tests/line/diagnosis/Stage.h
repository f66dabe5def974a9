#pragma once

#include "FarSide.h"
#include "diagnosis/Diagnosis.h"
#include "platform/PollLoop.h"
#include "testing/core/RecordingDesktop.h"
#include "testing/line/ServedPrinter.h"
#include "testing/stack/ManualReactor.h"

#include <memory>
#include <string>

namespace qncomm::testing {

/// Kinds of line, as bits of where a condition can be.
enum Kind : unsigned { InProcess = 1, Pty = 2, Tcp = 4, Remote = 8 };
constexpr unsigned Anywhere = InProcess | Pty | Tcp | Remote;
constexpr unsigned WithRate = InProcess | Pty | Remote;
constexpr unsigned WithFormat = InProcess | Remote;
constexpr unsigned Sockets = Tcp | Remote;

/// What can be wrong with a line, or right: a row of the table.
struct Condition {
    const char* name;
    const char* verdict;
    unsigned kinds;                ///< where it can be
    const char* printer = "";      ///< the virtual printer's options, when there is one
    const char* typed = "";        ///< what an earlier host left it with
    const char* as = "9600,n,8,2"; ///< the earlier host's settings
    Device (*device)() = nullptr;  ///< or another device
    const char* address = "";      ///< or what is named there
    int load = 0;                  ///< bytes of a load that is noted to have broken off there
    /// What another program does with the device meanwhile; false when it cannot.
    bool (*held)(int fd) = nullptr;
};

/// The address of a condition that stands for a socket which is no remote port.
inline constexpr std::string_view PlainSocket = "plain";

/// A line of some kind with what stands at its far side, and the examination of it.
class Stage {
  public:
    /// The condition outlives the stage.
    Stage(Kind kind, const Condition& condition);

    /// What is found there.
    Examined Look() { return Examine(false); }
    /// What is found once the fix was made.
    Examined LookAndFix() { return Examine(true); }

  private:
    Examined Examine(bool fix);
    Reactor& Loop() {
        if (mKind == InProcess) return mManual;
        return mReal;
    }
    void Serve(Device device);
    void ServePlainly();
    void Print();
    void Type(ByteChannel& channel);

    Kind mKind;
    const Condition& mCondition;
    ManualReactor mManual;
    PollLoop mReal;
    RecordingDesktop mDesktop;
    std::string mAddress;
    ChannelFactory mFactory = MakeChannel;
    std::unique_ptr<ServedPrinter> mPrinter;
    std::unique_ptr<ServedDevice> mDevice;
};

/// The rows of a diagnosis, a line each, for the message of a test that fails.
std::string Told(const Examined& examined);

} // namespace qncomm::testing
