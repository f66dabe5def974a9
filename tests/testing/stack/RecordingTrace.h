#pragma once

#include "trace/TraceSink.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm::testing {

/// Keeps what travels on a line, and when it was told last.
struct RecordingTrace final : TraceSink {
    void Record(std::int64_t lMs, TraceKind kind, std::string_view sBytes) override {
        constexpr std::array names{"tx ", "rx ", "event "};
        mLines.push_back(names.at(static_cast<std::size_t>(kind)) + std::string(sBytes));
        mLastMs = lMs;
        if (kind == TraceKind::Sent) mSent += sBytes;
        if (kind == TraceKind::Received) mReceived += sBytes;
    }

    std::vector<std::string> mLines; ///< each with its kind before it
    std::string mSent;
    std::string mReceived;
    std::int64_t mLastMs = 0;
};

} // namespace qncomm::testing
