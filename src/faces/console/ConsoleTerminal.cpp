#include "console/ConsoleTerminal.h"

#include "common/Wait.h"
#include "console/RawTerminal.h"
#include "platform/Fd.h"
#include "platform/Suspension.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include <unistd.h>

namespace qncomm {
namespace {

constexpr std::string_view Prompt = "Ok\r\n";
constexpr char CtrlC = '\x03';
constexpr const char* NoBreak = "there is no line that could break";
constexpr std::int32_t LongWaitMs = 60'000; // keys, replies and signals end it

} // namespace

ConsoleTerminal::ConsoleTerminal(Reactor& reactor, Wiring wiring)
    : mReactor(reactor), mWiring(std::move(wiring)), mSilence(reactor) {}

void ConsoleTerminal::Show(std::string_view sReceived) {
    mSilence.Restart();
    mReply += sReceived;
    if (mReply.size() > Prompt.size()) mReply.erase(0, mReply.size() - Prompt.size());
    Put(Utf8FromPrinter(sReceived));
}

void ConsoleTerminal::Put(std::string_view text) {
    if (mOutputError == 0) mOutputError = WriteAll(mWiring.out, text);
    if (mOutputError != 0) mEnded = true; // nobody sees what the printer says any more
}

bool ConsoleTerminal::Run() {
    return ::isatty(mWiring.in) == 1 ? RunKeys() : RunLines();
}

bool ConsoleTerminal::RunKeys() {
    RawTerminal raw(mWiring.in);
    const auto begin = [this, &raw] {
        if (raw.Enter() && mWiring.ready) mWiring.ready();
    };
    const Suspension suspension(
        mReactor, [&raw] { raw.Leave(); }, begin);
    const auto watch =
        mReactor.Watch(mWiring.in, FdEvents{.readable = true}, [this](FdEvents) { OnKeys(); });
    begin();
    bool alive = true;
    Wait wait(mReactor, {.wholeMs = WaitBounds::Endless, .stepMs = LongWaitMs}); // a person's time
    wait.UntilIn(mReactor, [&] {
        if (mEnded) return true;
        alive = mWiring.alive();
        if (alive) Flush();
        return !alive;
    });
    if (alive) Flush(); // what was typed before the end key
    return alive;
}

bool ConsoleTerminal::RunLines() {
    auto watch =
        mReactor.Watch(mWiring.in, FdEvents{.readable = true}, [this](FdEvents) { OnText(); });
    mSilence.Restart();
    bool alive = true;
    Wait wait(mReactor, {.wholeMs = WaitBounds::Endless}); // as long as the input goes on
    wait.UntilIn(mReactor, [&] {
        alive = mWiring.alive();
        if (!alive || mOutputError != 0) return true;
        if (mEnded) watch.reset(); // an input at its end would stay readable for ever
        const bool over = SendLines();
        wait.LookAgainIn(mWaiting ? mSilence.UntilExceeds(SilenceMs) : LongWaitMs);
        return over;
    });
    return alive;
}

bool ConsoleTerminal::SendLines() {
    do {
        if (!Flush()) return false;
        if (LineAnswered()) mWaiting = false;
    } while (!mWaiting && SendLine()); // the answer may be there already
    return mEnded && !mWaiting && mLines.empty() && mToSend.empty();
}

bool ConsoleTerminal::LineAnswered() const {
    return mWaiting && (mReply == Prompt || mSilence.ElapsedMs() > SilenceMs);
}

bool ConsoleTerminal::SendLine() {
    std::size_t end = mLines.find('\n');
    if (end == std::string::npos) {
        if (!mEnded || mLines.empty()) return false;
        end = mLines.size(); // the last line lacks its end
    }
    std::string line = mLines.substr(0, end);
    mLines.erase(0, end + 1);
    if (line.ends_with('\r')) line.pop_back();
    mToSend = line + "\r\n";
    mReply.clear();
    mWaiting = true;
    mSilence.Restart();
    return true;
}

bool ConsoleTerminal::Flush() {
    if (!mToSend.empty()) mToSend.erase(0, mWiring.send(mToSend));
    if (!mToSend.empty()) mSilence.Restart(); // the line is still taking it
    return mToSend.empty();
}

void ConsoleTerminal::OnKeys() {
    for (const char key : ReadInput()) {
        if (mEnded) return;
        if (std::exchange(mCommand, false))
            OnCommand(key);
        else if (key == EndKey)
            mEnded = true;
        else if (key == MenuKey)
            mCommand = true;
        else
            mToSend += mTyped.Feed(std::string_view(&key, 1));
    }
}

void ConsoleTerminal::OnCommand(char key) {
    switch (key) {
    case 'b':
        if (const std::string why = mWiring.sendBreak ? mWiring.sendBreak() : NoBreak; !why.empty())
            Tell(why);
        break;
    case 'c':
        mToSend += CtrlC;
        break;
    case 't':
    case MenuKey:
        mToSend += MenuKey;
        break;
    case 'z':
        Suspension::Suspend();
        break;
    case 'q':
    case EndKey:
        mEnded = true;
        break;
    default:
        Tell("Ctrl-T and then: b break, c Ctrl-C, t Ctrl-T, z stop for a while, q end");
    }
}

void ConsoleTerminal::Tell(std::string_view text) {
    Put("\r\n[" + std::string(text) + "]\r\n");
}

void ConsoleTerminal::OnText() {
    mLines += mTyped.Feed(ReadInput());
}

std::string ConsoleTerminal::ReadInput() {
    if (StopInBackground(mWiring.in, SIGTTIN)) return {};
    std::array<char, 4096> part{};
    const ssize_t got = ::read(mWiring.in, part.data(), part.size());
    if (got > 0) return {part.data(), static_cast<std::size_t>(got)};
    if (got == 0 || (errno != EINTR && errno != EAGAIN)) mEnded = true;
    return {};
}

} // namespace qncomm
