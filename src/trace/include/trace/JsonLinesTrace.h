#pragma once

#include "platform/Fd.h"
#include "platform/IoResult.h"
#include "trace/TraceSink.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// Writes a trace to a file, one JSON object a line: {"ms":12,"kind":"tx","bytes":"FILES\r\n"}. The
/// kinds are tx, rx and event; a byte that is no printing ASCII is written as a JSON escape of its
/// value, so that any byte sequence reads back. Times count from the first record. Each record is
/// written at once. A write that fails ends the trace; Result tells.
class JsonLinesTrace final : public TraceSink {
  public:
    /// Creates the file or empties it; a stream (a terminal, a pipe that somebody reads) is written
    /// to. Result tells whether that went well.
    explicit JsonLinesTrace(const std::string& sPath);

    void Record(std::int64_t lMs, TraceKind kind, std::string_view sBytes) override;

    /// Done as long as every record was written; else why the file could not be opened or took no
    /// more, with its path.
    const IoResult& Result() const { return mResult; }

  private:
    std::string mPath;
    Fd mFile;
    IoResult mResult;
    std::optional<std::int64_t> mStart;
};

} // namespace qncomm
