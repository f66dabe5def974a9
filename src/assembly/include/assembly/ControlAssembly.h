#pragma once

#include "assembly/TerminalViewport.h"
#include "control/QNComm.h"
#include "platform/Reactor.h"
#include "serial/PDQComm.h"
#include "terminal/Terminal.h"

#include <memory>

namespace qncomm {

/// What a face supplies to show one control: the form around it, its window and its terminal.
struct ControlView {
    ControlHost& host;
    ControlWindow& window;
    TerminalScreen& terminal;
};

/// A control with the serial control and the terminal grid under it, wired together.
///
/// The loop of the services is the reactor. Reactor, services and view must outlive the assembly.
/// The assembly may be destroyed while an operation of the control is on the stack, such as in a
/// handler of one of its events: reactor, services, trace and Options::keep must stay valid until
/// that operation has returned; the view need not.
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

    ControlAssembly(Reactor& reactor, const ControlServices& services, const ControlView& view);
    ControlAssembly(Reactor& reactor, const ControlServices& services, const ControlView& view,
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
