// The printer that answered last on a port: what is kept of it, and how it is spoken to again
// without a search.

#include "RememberedPrinter.h"

#include "LinkState.h"
#include "PrinterError.h"
#include "common/CountedScope.h"
#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/StopWatch.h"
#include "common/Text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qncomm {
namespace {

// -- What is kept

constexpr std::string_view ChannelKey = "Channel";
constexpr std::string_view ModelKey = "Model";
constexpr std::string_view FirmwareKey = "Firmware";
constexpr std::string_view AnsweredKey = "Answered";
constexpr std::string_view LoadKey = "Load";
constexpr std::string_view LoadUndoKey = "LoadUndo";
/// As much of the time of the last answer as a new one must differ in to be written: the hour.
constexpr std::size_t HourLength = std::string_view("2026-11-22T09").size();

/// A number beyond this was not written by a load.
constexpr double LargestLoad = 1e12;

std::uintmax_t LoadIn(const std::string& text) {
    const double bytes = Val(text);
    return bytes < 1 || bytes > LargestLoad ? 0 : static_cast<std::uintmax_t>(bytes);
}

struct LineValue {
    std::string_view key;
    std::string LinkState::*value;
    void (clsDataLink::*set)(std::string_view);
};

constexpr std::array LineValues{
    LineValue{"Baudrate", &LinkState::baudrate, &clsDataLink::SetBaudrate},
    LineValue{"Parity", &LinkState::parity, &clsDataLink::SetParity},
    LineValue{"Databits", &LinkState::databits, &clsDataLink::SetDatabits},
    LineValue{"Stopbits", &LinkState::stopbits, &clsDataLink::SetStopbits},
    LineValue{"FlowControl", &LinkState::flowcontrol, &clsDataLink::SetFlowcontrol},
};

/// The port's own section of the store.
class KeptConnection {
  public:
    KeptConnection(LinkState& state, std::int16_t port)
        : mState(state), mSection(state.SectionOf(port)) {}

    std::string Value(std::string_view key) const {
        return mState.settings->ReadValue(mSection, key, "");
    }

    RememberedPrinter Read() const {
        const double channel = Val(Value(ChannelKey));
        if (channel < 1 || channel > 3) return {};
        return {ToInt16(channel), {Value(ModelKey), Value(FirmwareKey)}};
    }

    LoadNote ReadLoad() const {
        const std::uintmax_t bytes = LoadIn(Value(LoadKey));
        if (bytes == 0) return {};
        return {bytes, Value(LoadUndoKey)};
    }

    const std::string& Section() const { return mSection; }

    void Write(const RememberedPrinter& printer) {
        for (const LineValue& line : LineValues)
            Set(line.key, mState.*line.value);
        Set(ChannelKey, ToText(std::int32_t{printer.channel}));
        Set(ModelKey, printer.identity.model);
        Set(FirmwareKey, printer.identity.version);
        const auto& timeOfDay = mState.host.options.timeOfDay;
        const std::string now = timeOfDay ? timeOfDay() : std::string();
        if (!Value(AnsweredKey).starts_with(now.substr(0, HourLength))) Set(AnsweredKey, now);
        if (!mChanged.empty()) mState.settings->WriteValues(mChanged);
    }

  private:
    void Set(std::string_view key, const std::string& value) {
        if (Value(key) != value) mChanged.push_back({mSection, std::string(key), value});
    }

    LinkState& mState;
    std::string mSection;
    std::vector<SettingValue> mChanged;
};

// -- Speaking to it

constexpr std::int16_t ProgressDone = 100;

/// How long the line must have been silent before anything is said. A printer whose program runs
/// is spoken to by the search alone.
constexpr std::int32_t ListenMs = 5;
/// A printer echoes what is typed at once. Nobody is there when the first word has not come back
/// so long after it has travelled.
constexpr std::int32_t EchoMs = 100;
constexpr std::int32_t ReplyMs = 1000; ///< the longest silence before the reply has ended
constexpr std::int32_t LongestReply = 5000;
constexpr std::int32_t TalkQuietMs = 100; ///< the end of what a printer says
constexpr std::int32_t LongestTalk = 3000;

constexpr std::string_view FirstWord = "IMMEDIATE";
constexpr std::string_view EndOfReply = "Ok\r\n";

/// Puts the printer into the modes of a claim and has it say who it is, through the channel that
/// the host is wired to: one reply proves settings, identity and channel.
std::string GreetingFor(std::int16_t channel) {
    return std::string(FirstWord) + " ON:SYSVAR(18)=-1:SYSVAR(19)=2:OPEN\"UART"
           + ToText(std::int32_t{channel})
           + ":\" FOR OUTPUT AS #68:PRINT#68,VERSION$(0):PRINT#68,VERSION$(1):CLOSE68\r\n";
}

/// Waits until done says that it is enough: then True. False when nothing came for silence ms, when
/// longest ms have passed or the port is closed.
template <class Done>
bool AwaitSign(LinkState& state, std::int32_t silence, std::int32_t longest, Done done) {
    bool met = false;
    state.Await({.wholeMs = longest, .silenceMs = silence}, [&] {
        met = done();
        return met || !state.Serial().PortOpen();
    });
    return met;
}

/// What has become of a line that was sent.
enum class Fate {
    Lost,     ///< it did not come back
    Taken,    ///< it came back without an answer
    Answered, ///< a printer has answered it
};

bool EndsInPrompt(std::string_view received) {
    return received.find(EndOfReply) != std::string_view::npos;
}

/// A printer whose modes are unknown may complain without a prompt behind.
bool EndsInPromptOrComplains(std::string_view received) {
    const std::vector<std::string> lines = SplitNonEmpty(received, CrLf);
    return EndsInPrompt(received) || std::any_of(lines.begin(), lines.end(), [](const auto& line) {
               return ParsePrinterError(line).number != 0;
           });
}

/// Sends a line that holds a word by which its echo is known, and waits for its answer. What took
/// it for something else is reported as a search's end.
Fate Type(LinkState& state, const std::string& line, std::string_view word,
          bool (*isAnswer)(std::string_view received)) {
    state.ClearReceived();
    state.Serial().Write(line);
    state.echo.Sent(line);
    const std::int32_t echoMs = EchoMs + state.TravelMs(word.size());
    if (!AwaitSign(state, echoMs, echoMs,
                   [&] { return Strip8thBit(state.received).find(word) != std::string::npos; }))
        return Fate::Lost;
    const bool answered =
        AwaitSign(state, ReplyMs, LongestReply + state.TravelMs(2 * line.size()),
                  [&] { return state.BeginsWithEcho() && isAnswer(state.received); });
    if (answered) return Fate::Answered;
    state.lastSearch = {
        SearchEnd::Taken,
        Classify({.bytes = state.received, .lineErrors = 0, .silentMs = ReplyMs, .sent = line}),
        LowerCase(state.link.SettingsText())};
    return Fate::Taken;
}

/// Makes nothing of what may stand in the input line. A program that asks takes this for its input,
/// and gets no other line; so a host that listens begins with it.
Fate EndInputLine(LinkState& state) {
    const std::string_view spoiler =
        state.host.options.listen ? LinkState::Nonsense : state.Spoiler();
    if (spoiler.empty()) return Fate::Answered;
    const Fate fate =
        Type(state, std::string(spoiler).append(CrLf), spoiler, EndsInPromptOrComplains);
    if (fate != Fate::Lost) state.inputLine = LinkState::InputLine::Empty;
    return fate;
}

/// Has the printer say who it is; the lines of its reply.
Fate Greet(LinkState& state, std::int16_t channel, std::vector<std::string>& lines) {
    const Fate fate = Type(state, GreetingFor(channel), FirstWord, EndsInPrompt);
    if (fate != Fate::Lost) state.inputLine = LinkState::InputLine::Empty;
    if (fate == Fate::Answered) state.TakeReceivedLines(lines);
    return fate;
}

/// What has come of speaking to the remembered printer once.
enum class Greeted { Met, Talk, Silence, Taken, AnotherChannel, AnotherPrinter };

struct GreetedText {
    Greeted greeted;
    std::string_view before;
    std::string_view after;
};

constexpr std::array GreetedTexts{
    GreetedText{Greeted::Talk, "Something speaks at the ", ""},
    GreetedText{Greeted::Silence, "The ", " were not answered"},
    GreetedText{Greeted::Taken, "No printer took a line at the ", ""},
    GreetedText{Greeted::AnotherChannel, "Another channel answers at the ", ""},
    GreetedText{Greeted::AnotherPrinter, "Another printer answers at the ", ""},
};

std::string WhyNotMet(Greeted greeted, const std::string& settings) {
    const auto* const row =
        std::find_if(GreetedTexts.begin(), GreetedTexts.end(),
                     [greeted](const GreetedText& text) { return text.greeted == greeted; });
    return std::string(row->before)
        .append("remembered settings ")
        .append(LowerCase(settings))
        .append(row->after);
}

/// Met makes its identity known.
Greeted Meet(LinkState& state, RememberedPrinter& known) {
    state.ClearReceived();
    if (AwaitSign(state, ListenMs, ListenMs, [&] { return !state.received.empty(); }))
        return Greeted::Talk;
    std::vector<std::string> reply;
    Fate fate = EndInputLine(state);
    // A load that lacks less than the greeting ends by it.
    const bool endsLoad = !state.loadNotedIn.empty() && !EndsInPrompt(state.received);
    if (fate == Fate::Answered || (fate == Fate::Lost && endsLoad))
        fate = Greet(state, known.channel, reply);
    // A line that another program has left unfinished was refused together with the greeting.
    if (fate == Fate::Answered && !IdentityIn(reply)) fate = Greet(state, known.channel, reply);
    if (fate != Fate::Answered) return fate == Fate::Taken ? Greeted::Taken : Greeted::Silence;
    const auto identity = IdentityIn(reply);
    if (!identity) return Greeted::AnotherChannel;
    if (known.identity != PrinterIdentity{} && known.identity != *identity)
        return Greeted::AnotherPrinter;
    known.identity = *identity;
    return Greeted::Met;
}

/// The same of a printer that a program which died may have left in the middle of a load: one that
/// says nothing is brought back first. A printer that answers is not, and the note is forgotten.
Greeted MeetBehindLoad(LinkState& state, RememberedPrinter& known, const LoadNote& load) {
    Greeted greeted = Meet(state, known);
    if (greeted == Greeted::Talk) { // it may say that it has given the load up
        state.AwaitQuiet(TalkQuietMs, LongestTalk);
        greeted = Meet(state, known);
    }
    if (greeted == Greeted::Silence) {
        const LoadEnd end = state.EndLoadOfAnother(load);
        greeted = Meet(state, known);
        if (greeted == Greeted::Met && end == LoadEnd::Stored) state.UndoLoad(load.undo);
    }
    state.ForgetDeafness();
    return greeted;
}

void KeepLoad(LinkState& state, const std::string& bytes, const std::string& undo) {
    const std::string& section = state.loadNotedIn;
    try {
        state.settings->WriteValues(
            {{section, std::string(LoadKey), bytes}, {section, std::string(LoadUndoKey), undo}});
    } catch (const QNError& error) { // the load is more than the note of it
        state.host.desktop.Log(error.Description());
    }
}

} // namespace

std::string ConnectionSection(std::string_view sAddress) {
    return "Connection " + std::string(sAddress);
}

std::uintmax_t NotedLoad(const RegSettings& store, std::string_view sAddress) {
    return LoadIn(store.ReadValue(ConnectionSection(sAddress), LoadKey, ""));
}

std::string LinkState::SectionOf(std::int16_t port) const {
    const auto& addressOf = host.options.addressOf;
    const std::string address = addressOf ? addressOf(port) : std::string();
    return ConnectionSection(address.empty() ? "COM" + ToText(std::int32_t{port}) : address);
}

bool LinkState::RemembersPrinters() const {
    return host.options.remembered && settings != nullptr && serial != nullptr;
}

void LinkState::Recall() {
    if (!RemembersPrinters()) return;
    recalledPort = commport;
    const KeptConnection kept(*this, ToInt16(Val(commport)));
    if (kept.Read().channel == 0) return;
    {
        const CountedScope several(settingSeveral);
        for (const LineValue& line : LineValues) {
            const std::string value = kept.Value(line.key);
            if (value == this->*line.value) continue;
            try {
                (link.*line.set)(value);
            } catch (const QNError& error) { // someone has edited the store
                host.desktop.Log(error.Description());
            }
        }
    }
    NotePlace();
}

void LinkState::Remember(std::int16_t port, const PrinterIdentity& identity) {
    if (!RemembersPrinters()) return;
    try {
        KeptConnection(*this, port).Write({link.Stdio(), identity});
    } catch (const QNError& error) { // a store that takes nothing costs the next program a search
        host.desktop.Log(error.Description());
    }
}

void LinkState::NoteLoad(const LoadNote& note) {
    if (!RemembersPrinters() || note.bytes == 0) return;
    loadNotedIn = SectionOf(ToInt16(Val(commport)));
    KeepLoad(*this, std::to_string(note.bytes), note.undo);
}

void LinkState::ForgetLoad() {
    if (loadNotedIn.empty()) return;
    if (RemembersPrinters()) KeepLoad(*this, "", "");
    loadNotedIn.clear();
}

Meeting LinkState::MeetRemembered() {
    if (!RemembersPrinters() || outOfStep) return Meeting::NotMet;
    if (recalledPort != commport) Recall();
    const std::int16_t port = ToInt16(Val(commport));
    const KeptConnection kept(*this, port);
    RememberedPrinter known = kept.Read();
    if (known.channel == 0 || !Serial().PortOpen()) return Meeting::NotMet;
    const LoadNote load = kept.ReadLoad();
    if (load.bytes > 0) loadNotedIn = kept.Section();
    const Greeted greeted =
        load.bytes > 0 ? MeetBehindLoad(*this, known, load) : Meet(*this, known);
    ClearReceived();
    if (greeted == Greeted::Taken && host.options.listen) {
        NoteTalk();
        ReportStatus(Explain(lastSearch), ProgressDone);
        return Meeting::Taken;
    }
    if (greeted != Greeted::Met) {
        const std::string why = WhyNotMet(greeted, link.SettingsText());
        return ReportStatus(why + ". Searching...", 0) ? Meeting::Cancelled : Meeting::NotMet;
    }
    stdio = known.channel;
    modelText = known.identity.model;
    versionText = known.identity.version;
    link.SetImmediateMode(true);
    live.Printer(PrinterAtPrompt, LearntReply);
    live.Identity(known.identity, LearntReply);
    Remember(port, known.identity);
    ReportConnected();
    return Meeting::Met;
}

bool LinkState::IsKnownToAsk() {
    if (live.Now().printer.value != PrinterAsking || !Serial().PortOpen()) return false;
    LineVerdict heard{.talk = LineTalk::Question, .fit = FormatFit::Fits};
    heard.sample = live.LastHeard().empty() ? lastSearch.heard.sample : live.LastHeard();
    lastSearch.end = SearchEnd::LineTalks;
    lastSearch.heard = std::move(heard);
    lastSearch.settings = LowerCase(Serial().PortSettings());
    ReportStatus(Explain(lastSearch), ProgressDone);
    return true;
}

void LinkState::ReportConnected() {
    constexpr std::array flowTexts = {", No Flowcontrol", ", Xon/Xoff", ", RTS/CTS",
                                      ", RTS/CTS, Xon/Xoff"};
    const auto flow = static_cast<std::size_t>(ToInt32(Val(flowcontrol)));
    ReportStatus("Printer connected through UART" + ToText(std::int32_t{link.Stdio()}) + ": at "
                     + baudrate + ", " + parity + ", " + databits + ", " + stopbits
                     + flowTexts[flow],
                 ProgressDone);
}

} // namespace qncomm
