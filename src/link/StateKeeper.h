#pragma once

#include "common/MessageLoop.h"
#include "link/Listening.h"
#include "link/LiveState.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace qncomm {

/// The one place that changes what is known of line and printer. The link's parts tell it what they
/// have seen; it dates that, counts the generations, and tells of each change.
class StateKeeper {
  public:
    /// changed is called after each change of a value or of the generation, not when a known one is
    /// only proven once more.
    StateKeeper(MessageLoop& loop, std::int32_t firstGeneration, std::function<void()> changed);

    const LiveState& Now() const { return mNow; }
    /// Whether the printer is known to wait at its prompt, nothing has proven so since that time
    /// (ms) and nothing stands in the line that it is typed.
    bool IsIdleSince(std::int64_t time) const {
        return mNow.printer.value == PrinterAtPrompt && mNow.printer.at <= time && mHeardAt <= time
               && mLine.empty();
    }

    /// A line that is not open says nothing more of the printer; one that was lost may come back
    /// with another printer.
    void Line(enumLineState state, std::string detail = {});
    void Printer(enumPrinterActivity activity, enumLearntFrom from);
    void Identity(const PrinterIdentity& who, enumLearntFrom from);
    /// The printer must be asked anew who it is; the same answer means the same printer.
    void ForgetIdentity();
    void Place(const PrinterPlace& place);
    /// The line was found to say that.
    void Says(LineTalk talk);
    /// A search has found nobody: whoever answers next may be another.
    void NobodyFound();

    /// A command line was sent.
    void Told() { mTold = true; }
    /// The end of what was heard, from the last line's beginning.
    const std::string& LastHeard() const { return mLine; }
    /// Whoever had the line has done with it: a command whose reply has not come is under way.
    void LeftAlone();
    /// Text has come, with CR LF line ends. What a person types at a terminal is not known here, so
    /// that there only whole lines say that something runs, and a numbered one at the prompt is a
    /// line of a program that was typed. A line that a running program leaves unfinished for
    /// UnfinishedLineMs is taken for its question.
    void Heard(std::string_view text, bool byTerminal);

  private:
    template <class T>
    bool Learn(Learnt<T>& known, const T& value, enumLearntFrom from);
    void NextGeneration();
    void AwaitEndOfLine(bool unfinished);
    void OnLineTimer();
    void SayIf(bool changed);

    MessageLoop& mLoop;
    std::function<void()> mChanged;
    LiveState mNow;
    PrinterIdentity mFormer; ///< who answered last in this generation
    std::string mLine;       ///< the end of what was heard, from the last line's beginning
    bool mTold = false;
    std::int64_t mHeardAt = 0;                ///< ms, when text came last
    std::unique_ptr<RunningTimer> mLineTimer; ///< runs while a program's line is unfinished
};

} // namespace qncomm
