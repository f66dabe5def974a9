// What the search does for a host that wants the line heard: it listens before it speaks, and tries
// other parities where it was answered by noise.

#include "AutoConnectSearch.h"
#include "LineListener.h"
#include "common/Text.h"

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

/// The silence that the search waits for in any case: a silent line costs nothing more.
constexpr std::int32_t ListenMs = 100;
/// A line that still talks then is named by what it has said.
constexpr std::int32_t LongestTalkMs = 600;

/// For the settings at which a line can be read: what a talking line says in that time.
constexpr std::int32_t SettleMs = 10;
constexpr std::int32_t TasteMs = 40;
constexpr std::int32_t LongestTasteMs = 80;
/// A receiver of 8 bits without parity sees the parity of 7 bits, so it comes first.
constexpr std::array TastedFormats = {"n,8,2", "n,7,2", "e,7,2", "o,7,2", "s,7,2", "m,8,2"};

/// The silence in which a printer that has echoed may still be at its answer, and the longest
/// answer.
constexpr std::int32_t SlowAnswerMs = 1000;
constexpr std::int32_t LongestSlowAnswerMs = 3000;

/// Two stop bits are understood by a printer of one.
constexpr std::array ParityFormats = {"e,7,2", "o,7,2", "s,7,2", "e,8,2", "o,8,2", "s,8,2"};

bool IsQuiet(const HeardLine& heard) {
    return heard.silentMs >= ListenMs;
}

bool IsReadable(const LineVerdict& verdict) {
    return verdict.talk != LineTalk::Silence && verdict.talk != LineTalk::Noise
           && verdict.fit != FormatFit::Wrong;
}

/// Whether a line that said that, and then nothing for ListenMs, may be spoken to.
bool MayBeSpokenTo(const LineVerdict& verdict) {
    constexpr std::array harmless{LineTalk::Silence, LineTalk::Prompt, LineTalk::Noise};
    return std::find(harmless.begin(), harmless.end(), verdict.talk) != harmless.end();
}

} // namespace

bool AutoConnectSearch::IsLineFree() {
    const HeardLine heard = ListenToLine(mState, ListenMs, LongestTalkMs);
    const LineVerdict verdict = Classify(heard);
    const std::string settings = LowerCase(Serial().PortSettings());
    if (IsQuiet(heard) && MayBeSpokenTo(verdict)) {
        const std::size_t rate = settings.find(',');
        if (verdict.talk == LineTalk::Noise)
            mHeard.Add(settings.substr(0, rate), settings.substr(rate + 1), heard);
        return true;
    }
    mReport = {SearchEnd::LineTalks, verdict, settings};
    if (!IsReadable(verdict)) FindTalk();
    return false;
}

void AutoConnectSearch::FindTalk() {
    for (const char* format : TastedFormats) {
        for (const std::string& rate : mState.autoConnectBaudrates) {
            const std::string settings = rate + "," + format;
            Serial().SetPortOpen(false);
            if (!TryOpen(settings)) continue;
            // What comes now was sent or read at other settings; an adapter keeps a lot of it.
            DropTalk(mState, SettleMs);
            Flush();
            if (!IsReadable(Classify(ListenToLine(mState, TasteMs, LongestTasteMs)))) continue;
            mReport.heard = Classify(ListenToLine(mState, ListenMs, LongestTalkMs));
            mReport.settings = settings;
            if (IsReadable(mReport.heard)) return;
        }
    }
}

bool AutoConnectSearch::AwaitSlowAnswer(SearchAnswer& answer, const std::string& text,
                                        HeardLine& heard) {
    if (Classify(heard).talk != LineTalk::Question) {
        Collect(SlowAnswerMs, [&](const std::string& more) {
            answer.Take(text + more);
            return answer.Complete() ? -1 : LongestSlowAnswerMs;
        });
        heard.bytes += mRaw;
    }
    if (answer.Complete()) return true;
    mReport = {SearchEnd::Taken, Classify(heard), LowerCase(Serial().PortSettings())};
    return false;
}

AutoConnectSearch::Outcome AutoConnectSearch::TryParities() {
    for (const std::string& rate : mHeard.DamagedRates()) {
        for (const char* format : ParityFormats) {
            const Outcome outcome = TryCombination(rate, format);
            if (outcome != Outcome::Silent) return outcome;
        }
    }
    return Outcome::Silent;
}

} // namespace qncomm
