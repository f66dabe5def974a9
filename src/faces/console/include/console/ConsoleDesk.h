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

/// All that a control needs of its surroundings, for a program with or without a terminal: messages
/// go to a stream, questions are answered at the input or by answers given beforehand.
class ConsoleDesk {
  public:
    /// What a program chooses.
    struct Options {
        int input = 0;                          ///< the descriptor that is typed at; not closed
        GivenAnswer answer = GivenAnswer::None; ///< to every question of a box
        StatusLine::Style style = StatusLine::Style::Off; ///< how progress is shown
        std::int32_t width = 80;                          ///< columns
        ConsoleDesktop::LogSink log = {}; ///< receives diagnostic lines; may be empty
    };

    /// Without input, answers or progress. Reactor and stream must outlive the object.
    ConsoleDesk(Reactor& reactor, std::ostream& err) : ConsoleDesk(reactor, err, Options()) {}
    /// With these options; lifetimes are the same.
    ConsoleDesk(Reactor& reactor, std::ostream& err, Options options);
    ConsoleDesk(const ConsoleDesk&) = delete;
    ConsoleDesk& operator=(const ConsoleDesk&) = delete;

    /// What a ControlAssembly takes; all of it lives as long as this object.
    ControlServices Services();
    /// A view that shows nothing, for the control to run on.
    ControlView View() { return {mHost, mHost, mHost}; }

    /// The progress line.
    StatusLine& Status() { return mStatus; }
    /// The message boxes, as text.
    ConsoleDesktop& Boxes() { return mDesktop; }
    /// The forms, as text.
    ConsoleForms& Forms() { return mForms; }
    /// What the control sits on.
    ConsoleHost& Host() { return mHost; }
    /// Answers to input boxes.
    ConsoleAsker& Texts() { return mTexts; }
    /// Paths for file dialogs and for the binary transfer.
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
