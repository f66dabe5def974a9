#include "StateKeeper.h"

#include "common/Text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qncomm {
namespace {

constexpr std::string_view PromptText = "Ok";
/// Enough of a line to know a prompt or a question by.
constexpr std::size_t KeptOfLine = 128;
/// What else stands in text: line ends, tabs, a bell, a form feed, an escape, Xon and Xoff.
constexpr std::string_view ControlsInText = "\a\b\t\n\f\r\x11\x13\x1B";

/// Noise has other control characters.
bool IsText(std::string_view bytes) {
    return std::ranges::all_of(bytes, [](char byte) {
        return static_cast<unsigned char>(byte) >= ' '
               || ControlsInText.find(byte) != std::string_view::npos;
    });
}

/// A line that goes into the program: the prompt stays as it is.
bool IsProgramLine(std::string_view line) {
    return !line.empty() && line.front() >= '0' && line.front() <= '9';
}

struct Activity {
    LineTalk talk;
    enumPrinterActivity printer;
};

/// What a printer does whose line says that; anything else says nothing of a printer.
constexpr std::array Activities{
    Activity{LineTalk::ZModemReceiver, PrinterReceiving},
    Activity{LineTalk::KermitReceiver, PrinterReceiving},
    Activity{LineTalk::Prompt, PrinterAtPrompt},
    Activity{LineTalk::Question, PrinterAsking},
    Activity{LineTalk::Boot, PrinterRebooting},
    Activity{LineTalk::Text, PrinterRunning},
};

std::string_view LastLine(std::string_view lines) {
    const std::size_t before = lines.rfind(CrLf);
    return before == std::string_view::npos ? lines : lines.substr(before + CrLf.size());
}

} // namespace

StateKeeper::StateKeeper(MessageLoop& loop, std::int32_t firstGeneration,
                         std::function<void()> changed)
    : mLoop(loop), mChanged(std::move(changed)) {
    mNow.generation = firstGeneration;
}

template <class T>
bool StateKeeper::Learn(Learnt<T>& known, const T& value, enumLearntFrom from) {
    const bool changed = !(known.value == value);
    known = {value, mLoop.NowMs(), from};
    return changed;
}

void StateKeeper::SayIf(bool changed) {
    if (changed) mChanged();
}

void StateKeeper::NextGeneration() {
    ++mNow.generation;
    mFormer = {};
}

void StateKeeper::Line(enumLineState state, std::string detail) {
    const bool renewed = mNow.lineDetail != detail;
    mNow.lineDetail = std::move(detail);
    const bool changed = Learn(mNow.line, state, LearntPort);
    if (changed && state == LineLost) {
        NextGeneration();
        Learn(mNow.identity, {}, LearntPort);
    }
    if (state != LineOpen) {
        mTold = false;
        mLine.clear();
        Learn(mNow.printer, PrinterUnknown, LearntPort);
    }
    SayIf(changed || renewed);
}

void StateKeeper::Printer(enumPrinterActivity activity, enumLearntFrom from) {
    mTold = false;
    SayIf(Learn(mNow.printer, activity, from));
}

void StateKeeper::Identity(const PrinterIdentity& who, enumLearntFrom from) {
    if (mFormer.IsKnown() && mFormer != who) NextGeneration();
    mFormer = who;
    SayIf(Learn(mNow.identity, who, from));
}

void StateKeeper::ForgetIdentity() {
    if (!mNow.identity.value.IsKnown()) return;
    mNow.identity = {};
    mChanged();
}

void StateKeeper::Place(const PrinterPlace& place) {
    const bool known = mNow.place.from != LearntNot;
    const bool changed = Learn(mNow.place, place, LearntPort);
    if (changed && known) NextGeneration();
    SayIf(changed);
}

void StateKeeper::Says(LineTalk talk) {
    const auto* const found = std::ranges::find(Activities, talk, &Activity::talk);
    Printer(found == Activities.end() ? PrinterUnknown : found->printer, LearntText);
}

void StateKeeper::NobodyFound() {
    NextGeneration();
    mTold = false;
    Learn(mNow.printer, PrinterSilent, LearntSearch);
    mChanged();
}

void StateKeeper::LeftAlone() {
    if (std::exchange(mTold, false) && mNow.line.value == LineOpen)
        Printer(PrinterRunning, LearntCommand);
}

void StateKeeper::Heard(std::string_view text, bool byTerminal) {
    mLine += text;
    mHeardAt = mLoop.NowMs();
    const bool noise = !IsText(mLine);
    const std::size_t end = mLine.rfind(CrLf);
    const bool ended = end != std::string::npos;
    const std::string_view line =
        ended ? LastLine(std::string_view(mLine).substr(0, end)) : std::string_view();
    const bool prompt = Trim(line) == PromptText;
    const bool typed = mNow.printer.value == PrinterAtPrompt && IsProgramLine(line);
    if (ended) mLine.erase(0, end + CrLf.size());
    if (mLine.size() > KeptOfLine) mLine.erase(0, mLine.size() - KeptOfLine);
    if (noise) return;
    const bool asks = Trim(mLine).ends_with('?');
    const bool prompted = prompt && mLine.empty();
    const bool runs =
        byTerminal && !prompted && ((ended && !typed) || mNow.printer.value == PrinterRunning);
    AwaitEndOfLine(runs && !asks && !mLine.empty());
    if (prompted)
        Printer(PrinterAtPrompt, LearntText);
    else if (runs)
        Printer(asks ? PrinterAsking : PrinterRunning, LearntText);
}

void StateKeeper::AwaitEndOfLine(bool unfinished) {
    if (!unfinished)
        mLineTimer.reset();
    else if (mLineTimer == nullptr)
        mLineTimer = mLoop.StartTimer(UnfinishedLineMs, [this] { OnLineTimer(); });
}

void StateKeeper::OnLineTimer() {
    if (mNow.printer.value != PrinterRunning) {
        mLineTimer.reset();
    } else if (mLoop.NowMs() - mHeardAt >= UnfinishedLineMs) {
        mLineTimer.reset();
        Printer(PrinterAsking, LearntSilence);
    }
}

} // namespace qncomm
