#pragma once

#include "DetachedSink.h"
#include "HeardAnswers.h"
#include "KeptPort.h"
#include "LinkState.h"
#include "SearchAnswer.h"
#include "SetupReply.h"
#include "common/Pointer.h"
#include "common/QNError.h"
#include "common/StopWatch.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// One search for the printer on one port. It has the line to itself from its construction (the
/// mark is set, the pointer is busy) to its end, which puts everything back that the search
/// has not learned.
class AutoConnectSearch {
  public:
    AutoConnectSearch(LinkState& state, std::int16_t port);
    ~AutoConnectSearch();
    AutoConnectSearch(const AutoConnectSearch&) = delete;
    AutoConnectSearch& operator=(const AutoConnectSearch&) = delete;

    /// True when a printer was found. Raises nothing but what ends the whole program's wait.
    bool Run();

  private:
    enum class Outcome { Cancelled, Silent, Answered, Taken };
    struct Reply {
        std::string text;
        bool complete = false; ///< it held the marker and, after it, "Ok"
    };

    SerialControl& Serial() const { return mState.Serial(); }

    bool Search();
    bool FindLine();
    void WaitForSilence();
    /// Listens: whether the line may be spoken to. The report holds what it says.
    bool IsLineFree();
    /// Reports a line that was not readable as it is at the settings at which it is, if any.
    void FindTalk();
    bool FindPrinter();
    Outcome TryAll();
    /// The parities that no search tries, at the rates at which noise has answered.
    Outcome TryParities();
    Outcome TryCombination(const std::string& rate, const std::string& format);
    bool FindChannel();
    bool ReadSetup();
    void Learn(const SetupReply& setup);
    static void MoveToFront(Collection<std::string>& collection, const std::string& item);

    /// Takes what has come, as the search reads it; how many ms the reading may take in all.
    using Judge = std::function<std::int32_t(const std::string& text)>;
    /// Reads until nothing came for silence ms or the limit is over.
    std::string Collect(std::int32_t silence, const Judge& limitOf);
    /// Whether the probe is answered; that many bytes of other answers may come before.
    bool CollectProbe(const std::string& rate, const std::string& format, std::size_t before);
    /// What the probe's echo and text without an answer mean for a host that listens: whoever
    /// echoes is there, so a slow printer gets its time; what has none then has taken the probe for
    /// something else. True when the answer came.
    bool AwaitSlowAnswer(SearchAnswer& answer, const std::string& text, HeardLine& heard);
    /// Reads until the reply is complete or nothing came for silence ms.
    Reply CollectAnswer(std::string_view marker);
    /// Reads what a printer that takes its time has not answered yet: its answers, and lines on
    /// their way to it, are not to be mixed with the setup's. Gives up after as much silence as the
    /// setup's.
    std::string CollectOwed(std::size_t answers);
    std::string CollectSetup(const std::string& command);
    void WaitForDrain(std::int32_t limit);
    void Flush();
    /// Opens the port with the given settings, with those it has when empty.
    bool TryOpen(const std::string& settings = {});

    void GiveUp();
    void PutBackSettings();
    void End();
    void Quietly(const std::function<void()>& step);

    LinkState& mState;
    KeptPort mKept{mState}; ///< two searches at once would find nothing, each by the other's fault
    std::int16_t mPort;
    std::optional<BusyPointer> mBusy{std::in_place};
    std::string mFormerTag;
    std::int16_t mFormerPort;
    std::string mFormerSettings;
    std::int16_t mFormerHandshaking;
    std::int16_t mFormerMode;
    bool mWasOpen;
    std::optional<DetachedSink> mSink;
    std::int16_t mProgress = 0;
    std::int16_t mLoggedPort = -1;
    std::string mRate;
    std::string mFormat;
    std::string mRaw; ///< what was collected, as it came
    HeardAnswers mHeard;
    SearchReport mReport;
};

} // namespace qncomm
