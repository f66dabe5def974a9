#include "assembly/ControlAssembly.h"

#include "assembly/CaptureFiles.h"

#include <array>
#include <ctime>
#include <utility>

namespace qncomm {
namespace {

/// A grid whose captures are files of this machine, unless the host opens them elsewhere.
Terminal::Options CapturingToFiles(Terminal::Options options) {
    if (!options.captureOpener) options.captureOpener = OpenCaptureFile;
    return options;
}

/// Such as "2026-11-22T09:45:10Z".
std::string TimeOfDay() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    ::gmtime_r(&now, &parts);
    std::array<char, sizeof "2026-11-22T09:45:10Z"> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%FT%TZ", &parts)};
}

} // namespace

/// What stands under the control, and stays for as long as its operations do.
struct ControlAssembly::Line {
    /// Takes what is the line's out of the options.
    Line(Reactor& reactor, TerminalScreen& screen, Options& options)
        : keep(std::move(options.keep)),
          link(std::move(options.link)),
          serial(reactor, std::move(options.bindings), options.trace, std::move(options.factory)),
          grid(CapturingToFiles(std::move(options.grid))),
          viewport(grid, serial, screen) {
        if (!link.timeOfDay) link.timeOfDay = TimeOfDay;
        if (!link.addressOf) link.addressOf = [this](std::int16_t port) { return AddressOf(port); };
    }

    std::string AddressOf(std::int16_t port) {
        const PortBinding* binding = serial.Bindings().Find(port);
        return binding != nullptr ? binding->address.text : std::string();
    }

    /// What a control on this line takes.
    ControlServices With(ControlServices services) const {
        services.link = link;
        return services;
    }

    std::shared_ptr<void> keep;
    LinkOptions link;
    PDQComm serial;
    Terminal grid;
    TerminalViewport viewport;
};

ControlAssembly::ControlAssembly(Reactor& reactor, const ControlServices& services,
                                 const ControlView& view)
    : ControlAssembly(reactor, services, view, Options{}) {}

ControlAssembly::ControlAssembly(Reactor& reactor, const ControlServices& services,
                                 const ControlView& view, Options options)
    : mLine(std::make_shared<Line>(reactor, view.terminal, options)),
      mControl(std::make_unique<QNComm>(
          ControlParts{mLine->serial, mLine->viewport, view.host, view.window, mLine},
          mLine->With(services))) {}

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
