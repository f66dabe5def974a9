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
    ControlHost& host;        ///< the container that the control sits in
    ControlWindow& window;    ///< the window that it paints
    TerminalScreen& terminal; ///< where its terminal is shown
};

/// A control with the serial control and the terminal grid under it, wired together.
///
/// The loop of the services is the reactor. Reactor, services and view must outlive the assembly.
/// The assembly may be destroyed while an operation of the control is on the stack, such as in a
/// handler of one of its events: reactor, services, trace and Options::keep must stay valid until
/// that operation has returned; the view need not.
class ControlAssembly {
  public:
    /// What a host may choose; the defaults bind no port.
    struct Options {
        PortBindings bindings = {};           ///< which address each port number stands for
        TraceSink* trace = nullptr;           ///< may be null
        Terminal::Options grid = {};          ///< the grid's size and its scroll-back
        ChannelFactory factory = MakeChannel; ///< makes the byte channel of an address
        /// Kept as long as anything of the control is still on the stack.
        std::shared_ptr<void> keep = {};
    };

    /// A control with the default options. Lifetimes as above.
    ControlAssembly(Reactor& reactor, const ControlServices& services, const ControlView& view);
    /// A control with these options, which are moved in.
    ControlAssembly(Reactor& reactor, const ControlServices& services, const ControlView& view,
                    Options options);
    /// Takes the control down first: the port is closed and its claim given back.
    ~ControlAssembly();
    ControlAssembly(const ControlAssembly&) = delete;
    ControlAssembly& operator=(const ControlAssembly&) = delete;

    /// The control; valid as long as the assembly.
    QNComm& Control() { return *mControl; }
    /// The serial control under it, for what the control does not offer: bindings, the last
    /// failure, how a transfer went. Its terminal and event sinks are taken; see
    /// TerminalViewport::Received.
    PDQComm& Serial();
    /// The characters of the terminal, for a face that paints them. What writes to it goes through
    /// the viewport, so that the screen hears of it.
    Terminal& Grid();
    /// The control's viewport on that grid.
    TerminalViewport& Viewport();

  private:
    struct Line;

    std::shared_ptr<Line> mLine;
    std::unique_ptr<QNComm> mControl;
};

} // namespace qncomm
