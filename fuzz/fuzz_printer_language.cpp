// The virtual printer, as any host may talk to it: after whatever came, a break and a command are
// answered.

#include "simulator/VirtualPrinter.h"

#include <cstdlib>
#include <string>
#include <string_view>

namespace qnsim {
namespace {

constexpr int Slices = 20; // a program that goes on for ever is stopped after these

/// Lets the printer work and takes what it says.
std::string Listen(VirtualPrinter& printer, Micros& now) {
    std::string said;
    for (int slice = 0; slice < Slices; ++slice) {
        now += 1000;
        said += printer.ToHost(now, 1 << 20);
        if (!printer.NextDue()) break;
    }
    return said;
}

void Talk(std::string_view bytes) {
    Options options;
    options.bootMs = 0;
    VirtualPrinter printer(options);
    Micros now = 1;
    printer.HostOpened(now);
    printer.FromHost(bytes, now);
    Listen(printer, now);
    printer.DiscardFromHost(now);
    printer.Break(now);
    // What was said before the break is out of the way; an Xoff that held the printer is taken
    // back.
    printer.FromHost("\x11", now);
    Listen(printer, now);
    printer.FromHost("\rIMMEDIATE ON:PRINT 654321+1\r", now);
    if (Listen(printer, now).find("654322") == std::string::npos) std::abort();
}

} // namespace
} // namespace qnsim

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    qnsim::Talk({static_cast<const char*>(static_cast<const void*>(data)), size});
    return 0;
}
