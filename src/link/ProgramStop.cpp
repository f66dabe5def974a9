// Break, Ctrl-C, and the end of a program that runs.

#include "LinkState.h"
#include "common/QNError.h"
#include "common/StopWatch.h"
#include "common/modErrorHandling.h"

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

namespace qncomm {
namespace {

constexpr std::string_view CtrlC = "\x03";
constexpr std::string_view BreakSource = "Datalink:SendBreak";
constexpr std::string_view CtrlCSource = "Datalink:SendCtrlC";
constexpr std::string_view StopSource = "Datalink:StopProgram";

/// A printer that was stopped says so and falls silent for this long.
constexpr std::int32_t QuietMs = 200;
/// A program that still talks after that was not stopped.
constexpr std::int32_t StopMs = 2000;
constexpr std::int32_t BreakMs = 300;

/// Makes any printer at its prompt answer, whatever its modes, with what no program says.
constexpr std::string_view ProofLine = "IMMEDIATE ON:SYSVAR(18)=-1:SYSVAR(19)=2:PRINT 7919*2\r\n";
constexpr std::string_view Proof = "15838\r\nOk\r\n";
constexpr std::int32_t ProofMs = 1000;
constexpr std::int32_t ProofMost = 3000;

/// The line held in the break condition, which ends with it, whatever happens meanwhile; a link
/// that was torn down has closed the port, and the condition with it.
class HeldBreak {
  public:
    explicit HeldBreak(LinkState& state) : mState(state) { mState.Serial().HoldBreak(true); }
    ~HeldBreak() {
        try {
            if (mState.serial != nullptr) mState.serial->HoldBreak(false);
        } catch (const QNError&) { // NOLINT(bugprone-empty-catch): a line that is gone holds none
        }
    }
    HeldBreak(const HeldBreak&) = delete;
    HeldBreak& operator=(const HeldBreak&) = delete;

  private:
    LinkState& mState;
};

void RequireOpen(LinkState& state, std::string_view source) {
    if (!state.Serial().PortOpen()) state.Fail(ErrPortNotOpen, source);
}

/// Waits until arrived, which is called whenever something has come, says that it was enough: then
/// True. False when nothing came for quiet ms or most ms have passed.
bool Await(LinkState& state, std::int32_t quiet, std::int32_t most,
           const std::function<bool()>& arrived) {
    std::uint64_t heard = state.arrivals;
    const WaitEnd end = state.Await({.wholeMs = most, .silenceMs = quiet}, [&] {
        RequireOpen(state, StopSource);
        return std::exchange(heard, state.arrivals) != state.arrivals && arrived();
    });
    return end == WaitEnd::Met;
}

/// What a printer does after it was told to stop.
struct Reaction {
    bool spoke = false;  ///< it has said a line
    bool silent = false; ///< it says no more
};

Reaction Listen(LinkState& state) {
    Reaction reaction;
    StopWatch silence(state.host.loop);
    Await(state, QuietMs, StopMs, [&] {
        reaction.spoke |= state.received.find('\n') != std::string::npos;
        state.ClearReceived();
        silence.Restart();
        return false;
    });
    reaction.silent = silence.UntilExceeds(QuietMs) == 0;
    return reaction;
}

bool IsAtPrompt(LinkState& state) {
    state.ClearReceived();
    state.link.OutputText(std::string(ProofLine));
    std::string reply;
    return Await(state, ProofMs, ProofMost, [&] {
        reply += state.received;
        state.ClearReceived();
        return reply.find(Proof) != std::string::npos;
    });
}

struct Means {
    enumProgramStop how;
    void (*send)(clsDataLink&);
};

constexpr std::array AllMeans{
    Means{StopByCtrlC, [](clsDataLink& link) { link.SendCtrlC(); }},
    Means{StopByBreak, [](clsDataLink& link) { link.SendBreak(BreakMs); }},
};

/// False on a line that has no such means, as a socket has no break.
bool Send(const Means& means, clsDataLink& link) {
    try {
        means.send(link);
        return true;
    } catch (const QNError& error) {
        if (error.Number() != SerialErrDevice) throw;
        return false;
    }
}

} // namespace

void clsDataLink::SendBreak(std::int32_t lMilliseconds) {
    RequireOpen(*mState, BreakSource);
    const HeldBreak held(*mState);
    Delay(lMilliseconds);
}

void clsDataLink::SendCtrlC() {
    RequireOpen(*mState, CtrlCSource);
    mState->Serial().Write(CtrlC);
}

std::int16_t clsDataLink::StopProgram() {
    LinkState& state = *mState;
    const PortClaim claim = state.ClaimLine(true);
    if (!claim) return StopRefused;
    RequireOpen(state, StopSource);
    PurgePort();
    bool ran = false;
    bool silent = false;
    for (const Means& means : AllMeans) {
        if (!Send(means, *this)) continue;
        const Reaction reaction = Listen(state);
        ran |= reaction.spoke;
        silent = reaction.silent;
        // A command line would be a running program's input: it goes to a silent printer alone.
        if (reaction.silent && IsAtPrompt(state))
            return static_cast<std::int16_t>(ran ? means.how : StopNothingRan);
    }
    state.live.Printer(silent ? PrinterSilent : PrinterRunning, LearntSilence);
    state.Fail(ErrInputTimeout, StopSource);
}

} // namespace qncomm
