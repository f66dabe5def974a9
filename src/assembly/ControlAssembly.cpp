#include "assembly/ControlAssembly.h"

#include "assembly/CaptureFiles.h"

#include <utility>

namespace qncomm {
namespace {

/// A grid whose captures are files of this machine, unless the host opens them elsewhere.
Terminal::Options CapturingToFiles(Terminal::Options options) {
    if (!options.captureOpener) options.captureOpener = OpenCaptureFile;
    return options;
}

} // namespace

/// What stands under the control, and stays for as long as its operations do.
struct ControlAssembly::Line {
    Line(Reactor& reactor, TerminalScreen& screen, Options options)
        : keep(std::move(options.keep)),
          serial(reactor, std::move(options.bindings), options.trace, std::move(options.factory)),
          grid(CapturingToFiles(std::move(options.grid))),
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

TerminalViewport& ControlAssembly::Viewport() {
    return mLine->viewport;
}

const PDQComm& ControlAssembly::Serial() const {
    return mLine->serial;
}

PortBindings& ControlAssembly::Bindings() {
    return mLine->serial.Bindings();
}

void ControlAssembly::OpenPort() {
    mLine->serial.SetPortOpen(true);
}

void ControlAssembly::SetTransferPreferences(TransferPreferences preferences) {
    mLine->serial.SetTransferPreferences(preferences);
}

void ControlAssembly::CancelTransfer() {
    mLine->serial.SetTransferState(TransferAborting);
}

const Terminal& ControlAssembly::Grid() const {
    return mLine->grid;
}

TerminalChanges ControlAssembly::Changes() {
    return TerminalChanges(mLine->grid);
}

} // namespace qncomm
