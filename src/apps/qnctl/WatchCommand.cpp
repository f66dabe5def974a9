#include "Command.h"
#include "GivenSettings.h"
#include "Session.h"

#include "common/Wait.h"
#include "console/Charset.h"
#include "serial/PDQComm.h"
#include "trace/TraceReader.h"
#include "trace/TraceRows.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

namespace qnctl {
namespace {

using qncomm::TraceKind;
using qncomm::TraceRows;

constexpr std::int32_t BufferBytes = 65'536;
constexpr std::int32_t LongSleepMs = 60'000;
/// How long a line that has not ended waits for its rest before it is shown.
constexpr std::int64_t QuietUs = 200'000;

struct WatchArguments {
    std::string as;
    std::int32_t forMs = 0; ///< 0 = without end
    std::string until;      ///< UTF-8
    bool hex = false;
};

/// Looks for a text in what comes piece by piece, and keeps no more than the text's length of it.
class AwaitedText {
  public:
    /// The text in bytes of the line; an empty one never comes.
    explicit AwaitedText(std::string text) : mText(std::move(text)) {}

    void Feed(std::string_view bytes) {
        if (mText.empty() || mSeen) return;
        mTail += bytes;
        mSeen = mTail.find(mText) != std::string::npos;
        mTail.erase(0, mTail.size() - std::min(mTail.size(), mText.size() - 1));
    }
    bool Seen() const { return mSeen; }

  private:
    std::string mText;
    std::string mTail;
    bool mSeen = false;
};

/// "     1.204  <  " in front of what came at that time.
std::string MarginOf(const qncomm::TraceRow& row) {
    static constexpr std::array marks{'>', '<', '*'};
    constexpr std::size_t width = 6;
    const std::string seconds = std::to_string(row.ms / 1000);
    std::string margin(width - std::min(width, seconds.size()), ' ');
    margin += seconds;
    margin += '.';
    margin += std::to_string(1000 + row.ms % 1000).substr(1); // three digits
    margin += {' ', ' ', marks[static_cast<std::size_t>(row.kind)], ' ', ' '};
    return margin;
}

/// The port of the session, opened to listen: a serial control of its own, to which nothing writes,
/// so that neither a search nor a terminal can.
class WatchedPort final : public qncomm::TraceSink {
  public:
    WatchedPort(Session& session, const WatchArguments& arguments, AwaitedText awaited)
        : mSession(session),
          mArguments(arguments),
          mAwaited(std::move(awaited)),
          mRows(arguments.hex ? TraceRows::Form::Hex : TraceRows::Form::Text,
                [this](const qncomm::TraceRow& row) { Show(row); }),
          mQuiet(session.Loop().CreateAlarm([this] { mRows.Flush(); })),
          mSerial(session.Loop(), session.Ports().Bindings(), this) {
        mSerial.SetPortNumber(session.Port().number);
        mSerial.SetPortSettings(session.Link().SettingsText());
        mSerial.SetHandshaking(0); // a full buffer would otherwise send an Xoff
        mSerial.SetBufferSizes(BufferBytes, 1);
        mSerial.SetReceiveThreshold(1);
        // What is read here was recorded as it came.
        mSerial.SetEventSink([this](qncomm::SerialEvent) { mSerial.Read(); });
    }

    Outcome Run() {
        mSerial.SetPortOpen(true);
        Outcome end = Watch();
        mRows.Flush();
        return end;
    }

    void Record(std::int64_t lMs, TraceKind kind, std::string_view sBytes) override {
        if (auto* trace = mSession.Trace()) trace->Record(lMs, kind, sBytes);
        if (!mSerial.PortOpen()) return; // why it did not open is told as the command's error
        if (!mStart) mStart = lMs;
        const std::int64_t ms = lMs - *mStart;
        if (kind == TraceKind::Received) mAwaited.Feed(sBytes);
        if (mSession.Out().IsJson()) {
            mSession.Out().Line(
                qncomm::TraceLineOf({.ms = ms, .kind = kind, .bytes = std::string(sBytes)}));
            return;
        }
        mRows.Add(ms, kind, sBytes);
        mQuiet->SetDue(mSession.Loop().NowUs() + QuietUs);
    }

  private:
    Outcome Watch() {
        using qncomm::WaitBounds;
        const std::int32_t limit = mArguments.forMs > 0 ? mArguments.forMs : WaitBounds::Endless;
        std::optional<Outcome> end;
        qncomm::Wait wait(mSession.Loop(), {.wholeMs = limit, .stepMs = LongSleepMs});
        wait.UntilIn(mSession.Loop(), [&] {
            end = Ended();
            return end.has_value();
        });
        return end ? *end : TimeIsOver();
    }

    /// Why it watches no longer; nothing while it does.
    std::optional<Outcome> Ended() {
        if (!mSerial.PortOpen()) return Lost();
        if (mSession.Interrupted()) return Cancelled();
        if (mAwaited.Seen()) return Outcome{};
        if (const int error = mSession.Out().Error(); error != 0) return OutputLost(error);
        return std::nullopt;
    }

    Outcome Lost() const {
        const auto& lost = mSerial.LastFailure();
        return {ExitStatus::PortUnavailable, lost ? lost->number : 0, "PDQComm",
                lost ? lost->description : mSession.PortName() + " was closed."};
    }

    Outcome TimeIsOver() const {
        if (mArguments.until.empty()) return {};
        return Refused(ExitStatus::NoPrinter, "\"" + mArguments.until + "\" did not come within "
                                                  + std::to_string(mArguments.forMs) + " ms.");
    }

    void Show(const qncomm::TraceRow& row) {
        const bool event = row.kind == TraceKind::Event;
        std::string line = MarginOf(row);
        line += event ? row.text : qncomm::Utf8FromPrinter(row.text);
        mSession.Out().Line(line);
    }

    Session& mSession;
    const WatchArguments& mArguments;
    AwaitedText mAwaited;
    std::optional<std::int64_t> mStart;
    TraceRows mRows;
    std::unique_ptr<qncomm::Alarm> mQuiet;
    qncomm::PDQComm mSerial; // the last one: its closing is recorded, too
};

Outcome Watch(Session& session, const WatchArguments& arguments) {
    if (Outcome given = UseGivenSettings(session.Link(), arguments.as); !given.Ok()) return given;
    auto until = qncomm::PrinterFromUtf8(arguments.until);
    if (!until)
        return Refused(ExitStatus::Usage,
                       "--until holds a character that the printer's Windows-1252 lacks.");
    return WatchedPort(session, arguments, AwaitedText(std::move(*until))).Run();
}

} // namespace

CommandTable WatchCommands() {
    const auto arguments = std::make_shared<WatchArguments>();
    return {{"watch", "Show what comes on the line without sending a byte; Ctrl-C ends",
             Needs::Port,
             [arguments](CLI::App& app) {
                 DeclareGivenSettings(app, arguments->as);
                 app.add_option("--for", arguments->forMs, "End after that time")
                     ->type_name("MS")
                     ->check(CLI::Range(1, 86'400'000));
                 app.add_option("--until", arguments->until,
                                "End when that text has come; status 3 when --for ends first")
                     ->type_name("TEXT");
                 app.add_flag("--hex", arguments->hex, "Show the bytes as hex digits");
             },
             [arguments](Session& session) { return Watch(session, *arguments); }}};
}

} // namespace qnctl
