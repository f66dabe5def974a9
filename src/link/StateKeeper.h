#pragma once

#include "common/MessageLoop.h"
#include "link/LiveState.h"

#include <functional>
#include <string>
#include <string_view>

namespace qncomm {

/// The one place that changes what is known of line and printer. The link's parts tell it what they
/// have seen; it dates that, counts the generations, and tells of each change.
class StateKeeper {
  public:
    /// changed is called after each change of a value or of the generation, not when a known one is
    /// only proven once more.
    StateKeeper(const MessageLoop& loop, std::int32_t firstGeneration,
                std::function<void()> changed);

    const LiveState& Now() const { return mNow; }

    /// A line that is not open says nothing more of the printer; one that was lost may come back
    /// with another printer.
    void Line(enumLineState state, std::string detail = {});
    void Printer(enumPrinterActivity activity, enumLearntFrom from);
    void Identity(const PrinterIdentity& who, enumLearntFrom from);
    /// The printer must be asked anew who it is; the same answer means the same printer.
    void ForgetIdentity();
    void Place(const PrinterPlace& place);
    /// A search has found nobody: whoever answers next may be another.
    void NobodyFound();

    /// A command line was sent.
    void Told() { mTold = true; }
    /// Whoever had the line has done with it: a command whose reply has not come is under way.
    void LeftAlone();
    /// Text has come, with CR LF line ends. What a person types at a terminal is not known here, so
    /// that there only whole lines say that something runs.
    void Heard(std::string_view text, bool byTerminal);

  private:
    template <class T>
    bool Learn(Learnt<T>& known, const T& value, enumLearntFrom from);
    void NextGeneration();
    void SayIf(bool changed);

    const MessageLoop& mLoop;
    std::function<void()> mChanged;
    LiveState mNow;
    PrinterIdentity mFormer; ///< who answered last in this generation
    std::string mLine;       ///< the end of what was heard, from the last line's beginning
    bool mTold = false;
};

} // namespace qncomm
