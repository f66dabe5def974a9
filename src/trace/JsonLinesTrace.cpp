#include "trace/JsonLinesTrace.h"

#include "TraceLine.h"
#include "platform/FileOpening.h"
#include "platform/SystemErrors.h"

namespace qncomm {

JsonLinesTrace::JsonLinesTrace(const std::string& sPath)
    : mPath(sPath), mResult(OpenToWrite(sPath, FileStart::Empty, {.streams = true}, 0666, mFile)) {}

void JsonLinesTrace::Record(std::int64_t lMs, TraceKind kind, std::string_view sBytes) {
    if (!mResult.Ok()) return;
    if (!mStart) mStart = lMs;
    const std::string line = WriteTraceLine(lMs - *mStart, kind, sBytes) + "\n";
    if (const int error = WriteAll(mFile.Get(), line); error != 0)
        mResult = FileFailure(error, mPath);
}

} // namespace qncomm
