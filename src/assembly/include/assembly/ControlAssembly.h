#pragma once

#include "assembly/TerminalViewport.h"
#include "control/QNComm.h"
#include "platform/Reactor.h"
#include "serial/PDQComm.h"
#include "terminal/Terminal.h"

#include <memory>

namespace qncomm {

/// What a face shows a control on.
struct ControlGlass {
    ControlHost& host;
    ControlWindow& window;
    TerminalGlass& terminal;
};

/// A control with the serial control and the terminal grid under it, wired together.
///
/// The loop of the services is the reactor. Reactor, services and glass outlive the assembly; the
/// assembly may go while an operation of the control is on the stack, such as in a handler of one
/// of its events: reactor, services, trace and what Options::keep holds then serve until that
/// operation has ended, the glass no longer.
class ControlAssembly {
  public:
    struct Options {
        PortBindings bindings = {};
        TraceSink* trace = nullptr; ///< may be null
        Terminal::Options grid = {};
        ChannelFactory factory = MakeChannel;
        /// Kept as long as anything of the control is still on the stack.
        std::shared_ptr<void> keep = {};
    };

    ControlAssembly(Reactor& reactor, const ControlServices& services, const ControlGlass& glass);
    ControlAssembly(Reactor& reactor, const ControlServices& services, const ControlGlass& glass,
                    Options options);
    /// Takes the control down first: the port is closed and its claim given back.
    ~ControlAssembly();
    ControlAssembly(const ControlAssembly&) = delete;
    ControlAssembly& operator=(const ControlAssembly&) = delete;

    QNComm& Control() { return *mControl; }
    PDQComm& Serial();
    Terminal& Grid();
    TerminalViewport& Viewport();

  private:
    struct Line;

    std::shared_ptr<Line> mLine;
    std::unique_ptr<QNComm> mControl;
};

} // namespace qncomm
