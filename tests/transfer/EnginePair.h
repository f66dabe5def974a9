#pragma once

#include "testing/transfer/TransferRig.h"

#include <utility>

namespace qncomm::testing {

using namespace transfer;

// A sender and a receiver of one protocol at the two ends of a simulated line.
template <class Sender, class Receiver, class SenderOptions, class ReceiverOptions>
struct EnginePair {
    EnginePair(std::vector<MemoryFile> files, const LineSettings& line, std::uint64_t seed = 1,
               SenderOptions sending = {}, ReceiverOptions receiving = {},
               const std::optional<LineSettings>& back = std::nullopt)
        : sender(std::move(sending)),
          receiver(std::move(receiving)),
          source(std::move(files)),
          rig(sender, source, receiver, sink, line, back.value_or(line), seed) {}

    // The share of the line's rate that the file of `size` bytes travelled with.
    [[nodiscard]] double Share(std::size_t size, double rate) const {
        return static_cast<double>(size) / rate
               / (static_cast<double>(rig.Elapsed().count()) * 1e-6);
    }
    // Both ends succeeded and exactly this file arrived.
    [[nodiscard]] bool Carried(const std::string& content) const {
        return sender.Outcome() == Outcome::Success && receiver.Outcome() == Outcome::Success
               && sink.Whole().size() == 1 && sink.Whole()[0].content == content && !sink.gap;
    }

    Sender sender;
    Receiver receiver;
    MemorySource source;
    MemorySink sink;
    TransferRig rig;
};

// A line as a printer's at 115200 baud, 8N1.
inline LineSettings PacedLine(double rate = 11520) {
    LineSettings settings;
    settings.rate = rate;
    settings.latency = std::chrono::milliseconds(1);
    return settings;
}

} // namespace qncomm::testing
