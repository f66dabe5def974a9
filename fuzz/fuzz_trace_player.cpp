// Any file as a recording that is replayed, and a host that sends anything, in any pieces, at any
// time. The recording ends at the first NUL; the bytes behind it choose what the host does.

#include "Choices.h"
#include "endpoints/TracePlayer.h"
#include "testing/core/ScratchFolder.h"

#include <cstddef>
#include <string>
#include <utility>

namespace qnsim {
namespace {

using qncomm::fuzz::Choices;
using qncomm::fuzz::Promise;

/// Bytes that the records stand for, of those that the host sends (or is sent).
std::size_t BytesOf(const std::vector<qncomm::TraceRecord>& records, qncomm::TraceKind kind) {
    std::size_t bytes = 0;
    for (const auto& record : records)
        if (record.kind == kind)
            bytes += record.redacted > 0 ? record.redacted : record.bytes.size();
    return bytes;
}

/// The bytes that the host of the recording sent next, as far as the player tells what it misses.
void Play(TracePlayer& player, Choices& choices, std::size_t mostToHost) {
    Micros now = 1;
    std::size_t given = 0;
    while (!choices.IsOver()) {
        const std::uint8_t choice = choices.Next();
        if (choice % 2 == 0) player.FromHost(choices.Take(choice / 2U), now);
        now += Micros{choices.Next()} * choices.Next() * 1000;
        given += player.ToHost(now).size();
        Promise(given <= mostToHost);
        if (player.Finished()) Promise(player.Missing().empty());
        if (!player.Mismatch().empty()) Promise(!player.NextDue());
    }
}

void Replay(const std::string& path, Choices& choices) {
    auto reading = qncomm::ReadTrace(path);
    const std::size_t mostToHost = BytesOf(reading.records, qncomm::TraceKind::Received);
    const bool delays = choices.Next() % 2 == 0;
    TracePlayer player(std::move(reading.records), delays);
    Play(player, choices, mostToHost);
}

} // namespace
} // namespace qnsim

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const qncomm::testing::ScratchFolder folder;
    qncomm::fuzz::Choices choices(data, size);
    qnsim::Replay(folder.Write("trace", choices.TakeUntil('\0')), choices);
    return 0;
}
