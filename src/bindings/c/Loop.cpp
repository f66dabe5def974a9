// The control's loop and those of its host; what it asks of the host.

#include "Control.h"
#include "common/QNError.h"

#include <algorithm>
#include <limits>

using namespace qncomm::bindings;

void qn_cancel(qn_control* control) {
    if (control != nullptr) control->loop.Cancel();
}

int qn_on_signal(qn_control* control, qn_signal_handler handler, void* user) {
    return Guarded(control, [=](qn_control& mine) { mine.signalled = {handler, user}; });
}

int qn_on_box(qn_control* control, qn_box_handler handler, void* user) {
    return Guarded(control, [=](qn_control& mine) { mine.boxes.Set(handler, user); });
}

int qn_on_trace(qn_control* control, qn_trace_handler handler, void* user) {
    return Guarded(control, [=](qn_control& mine) { mine.trace.Set(handler, user); });
}

int qn_step(qn_control* control, std::int32_t ms) {
    return Guarded(control, [=](qn_control& mine) { mine.loop.Yield(ms); });
}

int qn_run(qn_control* control) {
    return Guarded(control, [](qn_control& mine) {
        const int outer = mine.runs;
        const int own = ++mine.runs;
        while (mine.runs == own)
            mine.loop.Yield(std::numeric_limits<std::int32_t>::max());
        mine.runs = std::min(mine.runs, outer); // a cancel has ended all of them
        if (mine.cancelling) throw qncomm::OperationCancelled();
    });
}

int qn_quit(qn_control* control) {
    return Guarded(control, [](qn_control& mine) {
        if (mine.runs > 0) --mine.runs;
    });
}

int qn_wake_fd(qn_control* control) {
    int fd = -1;
    Guarded(control, [&](qn_control& mine) { fd = mine.loop.WakeHandle(); });
    return fd;
}

int qn_fd(qn_control* control) {
    int fd = -1;
    Guarded(control, [&](qn_control& mine) { fd = mine.loop.Handle(); });
    return fd;
}

int qn_dispatch(qn_control* control) {
    return qn_step(control, 0);
}
