#include "Examination.h"

#include "Operations.h"

#include "control/QNComm.h"
#include "diagnosis/LineExamination.h"
#include "link/clsDataLink.h"
#include "platform/SystemFiles.h"
#include "qt/QNCommWidget.h"
#include "qt/QtReactor.h"
#include "serial/SerialDevices.h"

namespace qnterm {
namespace {

/// What is refused on the line is a finding, no box.
class NoBoxes final : public qncomm::Desktop {
    qncomm::MsgBoxResult ShowMsgBox(const qncomm::MsgBox& box) override {
        return box.buttons == qncomm::MsgBoxButtons::YesNo ? qncomm::MsgBoxResult::No
                                                           : qncomm::MsgBoxResult::Ok;
    }
    void Log(std::string_view /*line*/) override {}
};

/// While it lives the control's terminal does not have the port. A port that is not open is left
/// as it is: the control may be waiting for a device that comes back.
class PortGivenBack {
  public:
    explicit PortGivenBack(qncomm::QNCommWidget& control) : mControl(control) {
        if (mWasOpen) Link().SetTerminalActive(false);
    }
    ~PortGivenBack() {
        if (mWasOpen && mControl.isVisible()) Link().SetTerminalActive(true);
    }
    PortGivenBack(const PortGivenBack&) = delete;
    PortGivenBack& operator=(const PortGivenBack&) = delete;

  private:
    qncomm::clsDataLink& Link() { return mControl.control().Link(); }

    qncomm::QNCommWidget& mControl;
    bool mWasOpen = mControl.assembly().Serial().PortOpen();
};

} // namespace

std::optional<qncomm::Examined> Examine(const ExaminationParts& parts,
                                        const qncomm::ChosenPort& port,
                                        const qncomm::PortBook& book) {
    Operations& operations = parts.operations;
    qncomm::Examined examined{.port = port.address, .machine = {}, .line = {}};
    NoBoxes desktop;
    const bool done = operations.Run(Operations::tr("Why"), [&](qncomm::QNComm&) {
        if (const std::string device = qncomm::DevicePathOf(port.address); !device.empty())
            examined.machine = qncomm::ReadMachine(device);
        const PortGivenBack given(parts.control);
        qncomm::LineExamination line({.reactor = qncomm::QtReactor::OfApplication(),
                                      .desktop = desktop,
                                      .files = qncomm::SystemFiles(),
                                      .bindings = parts.control.assembly().Bindings(),
                                      .number = port.number,
                                      .settings = book.SettingsFor(port),
                                      .address = book.AddressOf(port.number),
                                      .progress =
                                          [&operations](const std::string& doing) {
                                              if (!doing.empty())
                                                  emit operations.Progress(
                                                      QString::fromStdString(doing), -1);
                                              return operations.Cancelled() || operations.IsShut();
                                          },
                                      .factory = parts.channels.Factory()});
        examined.line = line.Run();
    });
    if (!done || operations.IsShut()) return std::nullopt;
    return examined;
}

} // namespace qnterm
