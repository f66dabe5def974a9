#include "assembly/ControlAssembly.h"

#include <utility>

namespace qncomm {

/// What stands under the control, and stays for as long as its operations do.
struct ControlAssembly::Line {
    Line(Reactor& reactor, TerminalGlass& glass, Options options)
        : keep(std::move(options.keep)),
          serial(reactor, std::move(options.bindings), options.trace, std::move(options.factory)),
          grid(std::move(options.grid)),
          viewport(grid, serial, glass) {}

    std::shared_ptr<void> keep;
    PDQComm serial;
    Terminal grid;
    TerminalViewport viewport;
};

ControlAssembly::ControlAssembly(Reactor& reactor, const ControlServices& services,
                                 const ControlGlass& glass)
    : ControlAssembly(reactor, services, glass, Options{}) {}

ControlAssembly::ControlAssembly(Reactor& reactor, const ControlServices& services,
                                 const ControlGlass& glass, Options options)
    : mLine(std::make_shared<Line>(reactor, glass.terminal, std::move(options))),
      mControl(std::make_unique<QNComm>(
          ControlParts{mLine->serial, mLine->viewport, glass.host, glass.window, mLine},
          services)) {}

ControlAssembly::~ControlAssembly() {
    mLine->viewport.TakeGlassAway();
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
