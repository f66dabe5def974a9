#pragma once

#include "assembly/TerminalViewport.h"
#include "control/QNComm.h"
#include "link/LinkOptions.h"
#include "platform/Reactor.h"
#include "serial/PDQComm.h"
#include "terminal/Terminal.h"
#include "terminal/TerminalChanges.h"

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
        PortBindings bindings = {};  ///< which address each port number stands for
        TraceSink* trace = nullptr;  ///< may be null
        Terminal::Options grid = {}; ///< the grid's size and its scroll-back
        /// In place of the services'. Without functions of a host's own, addresses are those of
        /// the bindings and times those of this machine.
        LinkOptions link = {};
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
    /// The control's viewport: what is typed goes in there, and what the printer says comes out.
    TerminalViewport& Viewport();

    // -- The line under the control. The control drives it; a host reads it, and asks for little.

    /// The serial control, to read: whether the port is open, its name, why it failed, how a
    /// transfer goes.
    const PDQComm& Serial() const;
    /// Which address each port number stands for. A change counts from the next opening.
    PortBindings& Bindings();
    /// Opens the port, unless it is open, and raises what keeps it from opening: a search of the
    /// control would only say that it has found nothing. The control takes the open port over, and
    /// closes it when its last claim is given back.
    void OpenPort();
    /// How the next transfers are done.
    void SetTransferPreferences(TransferPreferences preferences);
    /// Cancels a transfer that runs, and tells the other side at once; nothing happens without one.
    /// The operation that started it ends as after any failed transfer.
    void CancelTransfer();

    // -- The characters of the terminal

    /// The characters, to read. What changes them goes through the control or its viewport, so that
    /// the screen is told.
    const Terminal& Grid() const;
    /// Their changes, for the one face that paints them.
    TerminalChanges Changes();

  private:
    struct Line;

    std::shared_ptr<Line> mLine;
    std::unique_ptr<QNComm> mControl;
};

} // namespace qncomm
