#pragma once

#include "assembly/ControlAssembly.h"
#include "console/ConsoleAsker.h"
#include "console/ConsoleDesktop.h"
#include "console/ConsoleFileDialogs.h"
#include "console/ConsoleForms.h"
#include "console/ConsoleHost.h"
#include "console/ConsoleInputs.h"
#include "console/LineReader.h"
#include "console/MemoryClipboard.h"
#include "console/StatusLine.h"
#include "platform/ProcessLauncher.h"
#include "platform/Reactor.h"

#include <cstdint>
#include <iosfwd>

namespace qncomm {

/// All that a control needs of where it runs, for a program at a terminal or without one: what is
/// said goes to a stream, what is asked is answered at the input or by answers given beforehand.
class ConsoleDesk {
  public:
    struct Options {
        int input = 0; ///< where the person types; stays the caller's
        GivenAnswer answer = GivenAnswer::None;
        StatusLine::Style style = StatusLine::Style::Off;
        std::int32_t width = 80; ///< columns
        ConsoleDesktop::LogSink log = {};
    };

    /// Reactor and stream outlive the object.
    ConsoleDesk(Reactor& reactor, std::ostream& err) : ConsoleDesk(reactor, err, Options()) {}
    ConsoleDesk(Reactor& reactor, std::ostream& err, Options options);
    ConsoleDesk(const ConsoleDesk&) = delete;
    ConsoleDesk& operator=(const ConsoleDesk&) = delete;

    /// What a ControlAssembly takes; all of it lives as long as this object.
    ControlServices Services();
    ControlView View() { return {mHost, mHost, mHost}; }

    StatusLine& Status() { return mStatus; }
    Desktop& Boxes() { return mDesktop; }
    ConsoleForms& Forms() { return mForms; }
    ConsoleHost& Host() { return mHost; }
    /// Answers to questions for a text, and paths for file dialogs.
    ConsoleAsker& Texts() { return mTexts; }
    ConsoleAsker& Files() { return mFiles; }

  private:
    Reactor& mReactor;
    LineReader mInput;
    StatusLine mStatus;
    ConsoleAsker mTexts;
    ConsoleAsker mFiles;
    ConsoleDesktop mDesktop;
    ConsoleInputs mInputs;
    MemoryClipboard mClipboard;
    ConsoleFileDialogs mFileDialogs;
    ProcessLauncher mLauncher;
    ConsoleForms mForms;
    ConsoleHost mHost;
};

} // namespace qncomm
