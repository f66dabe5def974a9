#include "Guest.h"

#include "Sockets.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

/// Nothing that works takes so long, under software emulation on a busy machine.
constexpr std::int64_t HangMs = 240'000;
constexpr std::int32_t LookMs = 20;

std::vector<std::string> MachineIn(const ScratchFolder& folder) {
    const auto socket = [&](const std::string& name) {
        return "socket,id=" + name + ",path=" + folder.File(name) + ",server=on,wait=off";
    };
    return {"qemu-system-x86_64",
            "-accel",
            "tcg",
            "-m",
            "256",
            "-display",
            "none",
            "-monitor",
            "none",
            "-nodefaults",
            "-no-reboot",
            "-kernel",
            QN_GUEST "/vmlinuz",
            "-initrd",
            QN_GUEST "/first",
            "-append",
            "console=ttyS0 panic=-1",
            "-chardev",
            "file,id=console,path=" + folder.File("console"),
            "-serial",
            "chardev:console",
            "-chardev",
            "null,id=line",
            "-serial",
            "chardev:line",
            "-chardev",
            socket("commands"),
            "-serial",
            "chardev:commands",
            "-chardev",
            socket("orders"),
            "-mon",
            "chardev=orders,mode=control",
            "-usb",
            "-chardev",
            socket("usb"),
            "-device",
            "usb-serial,chardev=usb,serial=" + std::string(AdapterSerial),
            "-trace",
            "usb_serial_*",
            "-D",
            folder.File("trace")};
}

} // namespace

// With a terminal of its own none of the lines becomes its controlling one, whose end would end it.
Guest::Guest() : mMachine(std::make_unique<Program>(MachineIn(mFolder), Program::Stdio::Terminal)) {
    const std::int64_t limit = mLoop.NowMs() + HangMs;
    for (; !mCommands || !mOrders; mLoop.WaitFor(-1, {}, LookMs * 1000)) {
        if (!mCommands) mCommands = ConnectToPath(mFolder.File("commands"));
        if (!mOrders) mOrders = ConnectToPath(mFolder.File("orders"));
        if (mLoop.NowMs() > limit) throw std::runtime_error("qemu does not start");
    }
    Order("qmp_capabilities", "{}");
    if (NextLine(mCommands, mCommandRest) != "ready")
        throw std::runtime_error("the guest does not come up" + LastWords());
}

Guest::Ended Guest::Run(const std::string& command) {
    Send(mCommands, command + "\n");
    Ended ended;
    for (;;) {
        const std::string line = NextLine(mCommands, mCommandRest);
        if (line.starts_with("=== ")) {
            ended.status = std::stoi(line.substr(4));
            return ended;
        }
        ended.text += line + "\n";
    }
}

void Guest::ConnectUart(const std::string& tty) {
    Order("chardev-change",
          R"({"id":"line","backend":{"type":"serial","data":{"device":")" + tty + R"("}}})");
}

void Guest::BreakUart() {
    Order("chardev-send-break", R"({"id":"line"})");
}

std::unique_ptr<Relay> Guest::PlugIn(const std::string& printer, const std::string& device) {
    Run("while test -e /dev/ttyUSB0; do sleep 0.1; done"); // the one that was pulled out before
    auto wire = std::make_unique<Relay>(mLoop, mFolder.File("usb"), printer);
    Run("until test -e " + device + "; do sleep 0.1; done");
    return wire;
}

void Guest::Order(const std::string& command, const std::string& arguments) {
    Send(mOrders, R"({"execute":")" + command + R"(","arguments":)" + arguments + "}\n");
    for (;;) {
        const std::string line = NextLine(mOrders, mOrderRest);
        if (line.starts_with(R"({"return")")) return;
        if (line.starts_with(R"({"error")"))
            throw std::runtime_error("qemu refuses " + command + ": " + line);
    }
}

void Guest::Send(const Fd& fd, const std::string& text) const {
    if (::send(fd.Get(), text.data(), text.size(), MSG_NOSIGNAL)
        != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("qemu does not listen");
}

std::string Guest::NextLine(const Fd& fd, std::string& rest) {
    const std::int64_t limit = mLoop.NowMs() + HangMs;
    bool ended = false;
    const auto watch = mLoop.Watch(fd.Get(), {.readable = true}, [&](FdEvents) {
        std::array<char, 4096> part{};
        const ssize_t got = ::read(fd.Get(), part.data(), part.size());
        if (got > 0) rest.append(part.data(), static_cast<std::size_t>(got));
        ended = got == 0;
    });
    while (rest.find('\n') == std::string::npos) {
        if (ended || mLoop.NowMs() > limit)
            throw std::runtime_error("the guest is silent" + LastWords());
        mLoop.Yield(1000);
    }
    std::string line = rest.substr(0, rest.find('\n'));
    rest.erase(0, line.size() + 1);
    std::erase(line, '\r');
    return line;
}

std::string Guest::LastWords() {
    const std::string console = mFolder.Read("console");
    mMachine->Signal(SIGTERM);
    const int status = mMachine->Wait();
    constexpr std::size_t most = 1000;
    return "; qemu ended with " + std::to_string(status) + ": " + mMachine->Out()
           + "\nthe last on the console:\n"
           + console.substr(console.size() - std::min(console.size(), most));
}

} // namespace qncomm::testing
