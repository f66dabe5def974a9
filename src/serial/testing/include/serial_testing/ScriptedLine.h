#pragma once

#include "platform/IoResult.h"
#include "serial/LineErrors.h"
#include "serial/LineSettings.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace qncomm::testing {

/// One exchange of a script.
struct ScriptStep {
    /// What the host must send next, byte for byte; empty = the answer comes by itself.
    std::string expect;
    std::string answer;       ///< what the far side sends then; may be empty
    std::int64_t delayUs = 0; ///< microseconds until the answer
};

/// The far side of a ScriptedChannel: what it does, a switch for each failure, and what it has
/// seen. A test sets and reads the fields directly; after changing one of an open channel it calls
/// the channel's Changed.
struct ScriptedLine {
    /// What the host says and the far side answers, in this order, over all openings. A host that
    /// says anything else loses the line, with both texts in the reason. Empty = the host may say
    /// anything and nothing is answered.
    std::vector<ScriptStep> script;
    std::size_t step = 0; ///< of the script, the one that comes next

    // -- Switches

    IoResult openResult;           ///< what Open returns; a failure leaves the channel closed
    IoResult probeResult;          ///< what Probe returns
    IoResult configureResult;      ///< what Configure returns; a failure changes no settings
    IoResult breakResult;          ///< what SetBreak returns
    std::optional<IoResult> loss;  ///< the line is gone: reads and writes return this from now on
    LineErrors errors;             ///< what the next look at the line's errors finds
    std::optional<bool> dsr;       ///< the DSR line; nothing = no modem lines
    std::size_t takes = 1'000'000; ///< bytes that writes still take; 0 = the line is full
    std::size_t pending = 0;       ///< bytes taken that have not left for the line
    std::optional<std::int64_t> pendingEnd; ///< when they will have left, on the reactor's clock

    // -- What it has seen

    std::string written;                ///< all that writes took
    std::vector<LineSettings> settings; ///< of each opening and each change, in order
    bool breaking = false;              ///< the break condition is held
    int opens = 0;                      ///< how often Open succeeded
    int closes = 0;                     ///< how often Close was called
    int inputDiscards = 0;              ///< how often DiscardInput was called
    int outputDiscards = 0;             ///< how often DiscardOutput was called

    /// Bytes on their way to the host.
    struct Arrival {
        std::int64_t dueUs = 0; ///< when they are there, on the reactor's clock
        std::string bytes;      ///< never empty
    };
    std::deque<Arrival> arrivals; ///< in the order of their times

    /// Whether the whole script was played and the line is not lost.
    [[nodiscard]] bool Played() const { return step == script.size() && !loss; }
};

} // namespace qncomm::testing
