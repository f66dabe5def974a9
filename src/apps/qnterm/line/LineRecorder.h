#pragma once

#include "trace/TraceSink.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>

namespace qnterm {

/// Lets a view see what travels on the line, and passes it on to the program's trace.
class LineRecorder final : public qncomm::TraceSink {
  public:
    using Show = std::function<void(std::int64_t lMs, qncomm::TraceKind kind, std::string_view)>;

    /// next may be null; it outlives this object.
    explicit LineRecorder(qncomm::TraceSink* next) : mNext(next) {}

    /// Calls show with each record from now on; nobody for an empty function. It must not throw.
    void ShowIn(Show show) { mShow = std::move(show); }

    void Record(std::int64_t lMs, qncomm::TraceKind kind, std::string_view sBytes) override {
        if (mNext != nullptr) mNext->Record(lMs, kind, sBytes);
        if (mShow) mShow(lMs, kind, sBytes);
    }

  private:
    qncomm::TraceSink* mNext;
    Show mShow;
};

} // namespace qnterm
