#include "PrinterTransferRig.h"

#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"
#include "transfer/TransferFiles.h"
#include "transfer/ZModemReceiver.h"
#include "transfer/ZModemSender.h"

#include <algorithm>

namespace qncomm::testing {
namespace {

using qncomm::transfer::KermitOptions;
using qncomm::transfer::Phase;
using qncomm::transfer::Time;

constexpr std::size_t HostBuffer = 512; // bytes that the host lets queue on its line
// What stands behind a last packet and behind the sign that cancels ZModem.
constexpr std::string_view EndOfProtocol = "\r\n\x8D\x8A\x11\x18\b";
constexpr Micros Longest = 3'600'000'000;  // no transfer here takes an hour
constexpr Micros AfterTheEnd = 12'000'000; // the printer is at its prompt by then

template <class Engine>
std::unique_ptr<TransferEngine> Make() {
    return std::make_unique<Engine>();
}

template <class Engine>
std::unique_ptr<TransferEngine> MakeSevenBits() {
    KermitOptions options;
    options.sevenBits = true;
    return std::make_unique<Engine>(options);
}

template <class Engine>
std::unique_ptr<TransferEngine> MakeWithoutSize() {
    KermitOptions options;
    options.attributes = false;
    return std::make_unique<Engine>(options);
}

} // namespace

const Protocol kermit{'K', Make<qncomm::transfer::KermitSender>,
                      Make<qncomm::transfer::KermitReceiver>};
const Protocol kermitOfSevenBits{'K', MakeSevenBits<qncomm::transfer::KermitSender>,
                                 MakeSevenBits<qncomm::transfer::KermitReceiver>};
const Protocol kermitWithoutSize{'K', MakeWithoutSize<qncomm::transfer::KermitSender>,
                                 MakeWithoutSize<qncomm::transfer::KermitReceiver>};
const Protocol zmodem{'Z', Make<qncomm::transfer::ZModemSender>,
                      Make<qncomm::transfer::ZModemReceiver>};

void PrinterTransferRig::Begin(const std::string& command) {
    mTail.clear();
    Send(command + "\r\n");
    std::string echo;
    for (int turns = 0; turns < 10'000 && echo.size() < command.size() + 2; ++turns) {
        echo += Printer().ToHost(Now(), command.size() + 2 - echo.size());
        if (const auto due = Printer().NextDue(); due && *due > Now()) Pass(*due - Now());
    }
    EXPECT_EQ(echo, command + "\r\n");
}

Outcome PrinterTransferRig::Upload(const Protocol& protocol, const MemoryFile& file) {
    MemorySource source({file});
    return Upload(protocol, source);
}

Outcome PrinterTransferRig::Upload(const Protocol& protocol, MemorySource& source) {
    Begin(std::string("TRANSFER ") + protocol.letter + " \"R\"");
    const auto engine = protocol.sender();
    Run(*engine, &source, nullptr);
    return engine->Outcome();
}

Outcome PrinterTransferRig::Download(const Protocol& protocol, const std::string& name) {
    Begin(std::string("TRANSFER ") + protocol.letter + " \"S\",\"" + name + "\"");
    const auto engine = protocol.receiver();
    sink = MemorySink();
    Run(*engine, nullptr, &sink);
    return engine->Outcome();
}

void PrinterTransferRig::Run(TransferEngine& engine, MemorySource* source, MemorySink* into) {
    engine.Start(Time(Now()));
    const Micros end = Now() + Longest;
    while (!engine.IsOver() && Now() < end) {
        Hear(engine, source, into);
        if (const auto due = engine.NextDeadline(); due && *due <= Time(Now()))
            engine.Tick(Time(Now()));
        Speak(engine, source, into);
        if (onStep) onStep(engine);
        if (!PassTime(engine)) break;
    }
    EXPECT_TRUE(engine.IsOver()) << "the host's end waits for ever";
    Send(behindTheEnd);
    mTail += Read(AfterTheEnd);
    mTail.erase(0, mTail.find_first_not_of(EndOfProtocol));
}

/// The engine is given what may belong to it and no byte more.
void PrinterTransferRig::Hear(TransferEngine& engine, MemorySource* source, MemorySink* into) {
    const std::string said = Printer().ToHost(Now(), 1 << 20);
    std::size_t heard = 0;
    while (heard < said.size() && engine.Outcome() == Outcome::Running) {
        const std::size_t count = engine.Phase() == Phase::Moving ? said.size() - heard : 1;
        engine.Receive(std::string_view(said).substr(heard, count), Time(Now()));
        ServeRequests(engine, source, into, Time(Now()));
        heard += count;
    }
    if (heard < said.size()) mTail += said.substr(heard);
}

void PrinterTransferRig::Speak(TransferEngine& engine, MemorySource* source, MemorySink* into) {
    for (;;) {
        const std::size_t room =
            HostBuffer - std::min(HostBuffer, Printer().PendingFromHost(Now()));
        const auto output = ServedOutput(engine, source, into, Time(Now())).substr(0, room);
        if (output.empty()) return;
        const std::string bytes(output);
        engine.Sent(bytes.size(), Time(Now()));
        Send(bytes);
    }
}

bool PrinterTransferRig::PassTime(const TransferEngine& engine) {
    auto next = Printer().NextDue();
    if (const auto due = engine.NextDeadline(); due && (!next || due->count() < *next))
        next = due->count();
    if (engine.IsOver()) return true;
    if (next && *next > Now()) Pass(*next - Now());
    return next.has_value();
}

} // namespace qncomm::testing
