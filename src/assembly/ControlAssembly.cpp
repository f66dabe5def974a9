#include "assembly/ControlAssembly.h"

#include <utility>

namespace qncomm {

/// What stands under the control, and stays for as long as its operations do.
struct ControlAssembly::Line {
    Line(Reactor& reactor, TerminalScreen& screen, Options options)
        : keep(std::move(options.keep)),
          serial(reactor, std::move(options.bindings), options.trace, std::move(options.factory)),
          grid(std::move(options.grid)),
          viewport(grid, serial, screen) {}

    std::shared_ptr<void> keep;
    PDQComm serial;
    Terminal grid;
    TerminalViewport viewport;
};

ControlAssembly::ControlAssembly(Reactor& reactor, const ControlServices& services,
                                 const ControlView& view)
    : ControlAssembly(reactor, services, view, Options{}) {}

ControlAssembly::ControlAssembly(Reactor& reactor, const ControlServices& services,
                                 const ControlView& view, Options options)
    : mLine(std::make_shared<Line>(reactor, view.terminal, std::move(options))),
      mControl(std::make_unique<QNComm>(
          ControlParts{mLine->serial, mLine->viewport, view.host, view.window, mLine}, services)) {}

ControlAssembly::~ControlAssembly() {
    mLine->viewport.TakeScreenAway();
}

PDQComm& ControlAssembly::Serial() {
    return mLine->serial;
}

Terminal& ControlAssembly::Grid() {
    return mLine->grid;
}

TerminalViewport& ControlAssembly::Viewport() {
    return mLine->viewport;
}

} // namespace qncomm
