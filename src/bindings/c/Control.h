#pragma once

#include "HostLine.h"
#include "HostServices.h"
#include "Values.h"
#include "assembly/ControlAssembly.h"
#include "automation/CallMember.h"
#include "console/ConsoleDesk.h"
#include "platform/HostedLoop.h"
#include "qncomm/qncomm.h"

#include <cstdint>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace qncomm::bindings {

/// What a call has brought back, and the host's view of it.
struct Returned {
    /// Nothing yet.
    explicit Returned(qn_texts texts) : shown(texts) {}
    MemberOutcome outcome;
    Values shown; ///< points into the outcome
};

/// The error of the last call, in UTF-8.
struct LastError {
    std::int32_t number = 0;
    std::string source;
    std::string description;
};

} // namespace qncomm::bindings

/// The control of a host with all that stands around it. Made and ended on one thread.
struct qn_control {
    /// Throws what the system denies.
    explicit qn_control(const qn_options& options);
    ~qn_control();
    qn_control(const qn_control&) = delete;
    qn_control& operator=(const qn_control&) = delete;

    /// Whether this thread, of this process, made it.
    bool IsMine() const;
    /// Whether a call may begin; notes why not.
    bool MayBegin();
    /// Notes an error and returns the status for it.
    int Fail(qn_status status, std::int32_t number, std::string_view source,
             std::string_view description);
    /// The same for the exception that is being handled.
    int FailWithCurrent();

    static constexpr std::uint32_t Alive = 0x514E434FU;

    std::uint32_t mark = Alive; ///< of no memory that was freed, as far as one can tell
    pid_t owner;                ///< the thread's number, which differs in a child process
    qn_texts texts;
    int depth = 0;           ///< calls on the stack
    bool freed = false;      ///< goes when the outermost call returns
    bool sealed = false;     ///< in a callback that may not call
    bool cancelling = false; ///< until the outermost call returns
    int runs = 0;            ///< qn_run on the stack that have not been told to end

    qncomm::HostedLoop loop;
    std::ostream silence{nullptr};
    qncomm::ConsoleDesk desk;
    qncomm::bindings::HostBoxes boxes;
    qncomm::bindings::HostTrace trace;
    qncomm::bindings::HostLines lines;
    qncomm::bindings::HostScreen screen;
    qncomm::terminal::Damage damage; ///< told last
    qncomm::bindings::SignalCall signalled;
    qncomm::bindings::LastError error;
    std::unique_ptr<qncomm::bindings::Returned> returned;
    std::map<const qncomm::SurfaceEvent*, qncomm::Subscription> handlers;
    std::unique_ptr<qncomm::ControlAssembly> assembly;
    qncomm::Subscription cancels;
};

namespace qncomm::bindings {

/// Exists while a call of the host is on the stack; the outermost one hands the loop back, and ends
/// a control that was freed meanwhile.
class RunningCall {
  public:
    explicit RunningCall(qn_control& control);
    ~RunningCall();
    RunningCall(const RunningCall&) = delete;
    RunningCall& operator=(const RunningCall&) = delete;

  private:
    qn_control& mControl;
};

/// Does the work as a call of the host, and returns how it ended. NULL is error 5, too.
template <class Work>
int Guarded(qn_control* control, Work work) {
    if (control == nullptr || !control->MayBegin()) return QN_FAILED;
    const RunningCall running(*control);
    int status = QN_OK;
    try {
        work(*control);
        control->error = {};
    } catch (...) {
        status = control->FailWithCurrent();
    }
    return control->freed ? int{QN_FREED} : status;
}

/// The class of that number in QN_MEMBER, from 1. Raises 438 for none.
const SurfaceClass& ClassNumbered(std::int32_t number);

} // namespace qncomm::bindings
