// The smallest program with the control in it: it finds a label printer, tells which one it is and
// lists its files. Nothing is shown on a screen; what the control wants to say goes to the console.
//
//   host-console              on /dev/ttyUSB0
//   host-console ADDRESS      on that port: /dev/ttyS0, tcp://host:port, rfc2217://host:port

#include <common/MemorySettings.h>
#include <common/QNError.h>
#include <console/ConsoleDesk.h>
#include <control/PropertyBag.h>
#include <platform/PollLoop.h>

#include <iostream>
#include <memory>
#include <string>

int main(int argc, char** argv) try {
    using namespace qncomm;

    // The control waits for the printer in its host's message loop. This one sleeps until bytes
    // come; a program with a window has one of its own.
    PollLoop loop;

    // Where message boxes, questions and the like go: here to the console.
    ConsoleDesk desk(loop, std::cerr);

    // Ports have numbers from 1 to 16. Number 1 is the address from the command line.
    ControlAssembly::Options options;
    const std::string wrong = options.bindings.Give(1, argc > 1 ? argv[1] : "/dev/ttyUSB0");
    if (!wrong.empty()) throw QNError(5, "host-console", wrong);

    // The control with its serial port and its terminal. It starts to live when its host hands it
    // the properties that it was designed with; an empty bag has the defaults.
    ControlAssembly assembly(loop, desk.Services(), desk.View(), std::move(options));
    QNComm& control = assembly.Control();
    control.UserControl_ReadProperties(MemoryPropertyBag());

    // The port and what is found out about it are settings. FileSettings keeps them for next time.
    const auto settings = std::make_shared<MemorySettings>();
    settings->WriteValue("Settings", "Commport", "1");
    control.SetRegSettings(settings);

    // Long operations tell how far they are; a handler that sets cancel stops them.
    const Subscription status =
        control.StatusEvent.Connect([](std::string& text, std::int16_t percent, bool& /*cancel*/) {
            std::cerr << text << ' ' << percent << " %\n";
        });

    // The search tries all rates and formats; members that find no printer return quietly.
    if (!control.DoAutoconnect()) throw QNError(53, "host-console", "No printer was found.");
    std::cout << control.PrinterType() << ", " << control.FirmwareVersion() << '\n';
    for (const auto& file : *control.Files("c:"))
        std::cout << file->Name << ", " << file->Size << " bytes\n";
} catch (const qncomm::QNError& error) {
    std::cerr << error.Source() << ": " << error.Description() << '\n';
    return 1;
}
