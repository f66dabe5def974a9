#pragma once

#include "common/Desktop.h"
#include "common/HostFiles.h"
#include "common/RegSettings.h"
#include "diagnosis/LineFacts.h"
#include "link/clsDataLink.h"
#include "platform/Reactor.h"
#include "serial/PDQComm.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace qncomm {

/// What an examination works on. What is referred to outlives it.
struct ExaminedPort {
    Reactor& reactor;        ///< every wait yields to it
    Desktop& desktop;        ///< hears why something was refused
    HostFiles& files;        ///< not used, and asked for by a link
    PortBindings bindings;   ///< which address each number stands for
    std::int16_t number = 1; ///< the one that is examined
    /// Where the port's settings are remembered; read, never written. Not null.
    std::shared_ptr<const RegSettings> settings;
    /// What is remembered of the port's printer is kept under this; empty: nothing is.
    std::string address = {};
    std::string as = {};        ///< settings to listen at, such as "9600,n,8,2"; empty: remembered
    TraceSink* trace = nullptr; ///< hears what travels; may be null
    /// Told what is being done, and asked several times a second, with an empty text, whether to
    /// go on; true ends the examination. May be empty.
    std::function<bool(const std::string& sDoing)> progress = {};
    ChannelFactory factory = MakeChannel; ///< makes the byte channel of an address
};

/// Looks at a line as a careful person would: opens it, listens, and only where nothing comes by
/// itself searches for the printer and asks who it is. It changes nothing but by Fix.
class LineExamination {
  public:
    /// Opens nothing yet.
    explicit LineExamination(ExaminedPort port);
    ~LineExamination();
    LineExamination(const LineExamination&) = delete;
    LineExamination& operator=(const LineExamination&) = delete;

    /// Looks at the line and leaves it closed. Raises nothing but what the reactor raises.
    LineFacts Run();

    /// Ends what keeps the printer from its prompt as those facts tell: a running program, or a
    /// receiver that waits for a file. Returns what was done as a sentence, or why it was of no
    /// use. Raises nothing but what the reactor raises.
    std::string Fix(const LineFacts& facts);

  private:
    struct NoDialogs final : LinkDialogs {
        std::int16_t ShowCommSettings(clsDataLink&) override { return 2; }
        std::unique_ptr<ShownWindow> ShowWaitForReboot() override { return nullptr; }
    };

    bool Tell(const std::string& doing) const;
    /// Listens at these settings; false when the port does not open.
    bool Listen(const std::string& settings, std::int32_t ms, LineFacts& facts);
    void Settle();
    /// False when that was to end meanwhile.
    bool Open();
    void ListenAtOtherRates(LineFacts& facts);
    void AwaitEndOfLoad(LineFacts& facts);
    void ListenOnceMore(LineFacts& facts);
    void AskOnceMoreAfterNoise(LineFacts& facts);
    void Ask(LineFacts& facts);
    void Identify(LineFacts& facts);

    ExaminedPort mPort;
    LineRecord mRecord;
    NoDialogs mDialogs;
    PDQComm mSerial;
    clsDataLink mLink;
};

} // namespace qncomm
