#include "Stage.h"

#include "assembly/AllChannelKinds.h"
#include "common/MemorySettings.h"
#include "diagnosis/LineExamination.h"
#include "endpoints/PtyEndpoint.h"
#include "endpoints/Rfc2217Endpoint.h"
#include "endpoints/TcpEndpoint.h"
#include "platform/SystemFiles.h"
#include "testing/line/OtherProcess.h"

#include <gtest/gtest.h>

#include <array>
#include <fcntl.h>
#include <optional>
#include <utility>

namespace qncomm::testing {
namespace {

std::unique_ptr<ServedPrinter> PrinterOn(Kind kind, const std::string& printer) {
    switch (kind) {
    case Pty:
        return PrinterOnPty(printer);
    case Tcp:
        return PrinterOnTcp(printer);
    case Remote:
        return PrinterOnRfc2217(printer);
    default:
        return PrinterInProcess(printer);
    }
}

qnsim::OpenedEndpoint EndpointOf(Kind kind, Reactor& loop) {
    if (kind == Pty) return qnsim::PtyEndpoint::Open(loop, "");
    if (kind == Tcp) return qnsim::TcpEndpoint::Open(loop, 0);
    return qnsim::Rfc2217Endpoint::Open(loop, 0);
}

std::string SchemeOf(Kind kind) {
    return kind == Pty ? "" : kind == Tcp ? "tcp://" : "rfc2217://";
}

} // namespace

Stage::Stage(Kind kind, const Condition& condition) : mKind(kind), mCondition(condition) {
    const std::string_view named = condition.address;
    if (named == PlainSocket)
        ServePlainly();
    else if (!named.empty())
        mAddress = named;
    else if (condition.device != nullptr)
        Serve(condition.device());
    else
        Print();
}

Examined Stage::Examine(bool fix) {
    std::optional<OtherProcess> other;
    if (mCondition.held != nullptr)
        other.emplace(
            [this] { return mCondition.held(::open(mAddress.c_str(), O_RDWR | O_NOCTTY)); });
    Examined examined{.port = mAddress, .machine = {}, .line = {}};
    if (mAddress.starts_with('/')) examined.machine = ReadMachine(mAddress);
    PortBindings bindings(AllChannelKinds());
    EXPECT_EQ(bindings.Give(1, mAddress), "");
    const auto settings = std::make_shared<MemorySettings>();
    if (mCondition.load > 0)
        settings->WriteValue(ConnectionSection(mAddress), "Load", std::to_string(mCondition.load));
    LineExamination line({.reactor = Loop(),
                          .desktop = mDesktop,
                          .files = SystemFiles(),
                          .bindings = bindings,
                          .number = 1,
                          .settings = settings,
                          .address = mAddress,
                          .as = "9600,n,8,2",
                          .factory = mFactory});
    examined.line = line.Run();
    if (fix) {
        ::testing::Test::RecordProperty("fix", line.Fix(*examined.line));
        examined.line = line.Run();
    }
    return examined;
}

void Stage::Serve(Device device) {
    mAddress = "/dev/ttyUSB0";
    if (mKind == InProcess) {
        mFactory = ChannelsTo(device);
        return;
    }
    mDevice = std::make_unique<ServedDevice>(
        std::move(device), [this](Reactor& loop) { return EndpointOf(mKind, loop); });
    const std::string address = mDevice->Address();
    mAddress = address.find("://") == std::string::npos ? SchemeOf(mKind) + address : address;
}

/// A socket where a remote port should be.
void Stage::ServePlainly() {
    mDevice = std::make_unique<ServedDevice>(Device{},
                                             [](Reactor& loop) { return EndpointOf(Tcp, loop); });
    const std::string address = mDevice->Address();
    mAddress = SchemeOf(mKind) + address.substr(address.find("://") == std::string::npos ? 0 : 6);
}

void Stage::Print() {
    mPrinter = PrinterOn(mKind, mCondition.printer);
    mAddress = mPrinter->Address();
    if (*mCondition.typed == '\0') return;
    const auto address = ParsePortAddress(mAddress, AllChannelKinds());
    auto channel =
        std::make_shared<std::unique_ptr<ByteChannel>>(MakeChannel(*address.address, Loop()));
    Type(**channel);
    // A printer in this program lives as long as its channel.
    mFactory = [channel](const PortAddress&, Reactor&) { return std::move(*channel); };
}

/// Types what an earlier host has left the printer with, and leaves.
void Stage::Type(ByteChannel& channel) {
    const std::string typed = mCondition.typed;
    ASSERT_TRUE(channel.Open(*ParseLineSettings(mCondition.as)).Ok());
    std::string_view left = typed;
    std::string came;
    const std::string last = typed.substr(typed.rfind('\r', typed.size() - 2) + 1, 3);
    const std::int64_t until = Loop().NowMs() + 5000;
    while (Loop().NowMs() < until && (!left.empty() || came.find(last) == std::string::npos)) {
        if (!left.empty()) left.remove_prefix(channel.Write(left).count);
        channel.Wait({.readable = true}, 20'000);
        std::array<char, 4096> piece{};
        came.append(piece.data(), channel.Read(piece).count);
    }
    Loop().WaitFor(-1, {}, 100'000); // what follows the echo
    channel.Close();
    ASSERT_NE(came.find(last), std::string::npos) << came;
}

std::string Told(const Examined& examined) {
    std::string text;
    for (const Check& row : ChecksOf(examined))
        text += row.name + " " + NameOf(row.result) + ": " + row.text + "\n";
    return text;
}

} // namespace qncomm::testing
