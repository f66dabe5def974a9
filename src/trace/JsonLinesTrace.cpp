#include "trace/JsonLinesTrace.h"

#include "TraceLine.h"
#include "platform/SystemErrors.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace qncomm {

JsonLinesTrace::JsonLinesTrace(const std::string& sPath)
    : mFile(::open(sPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666)) {
    if (!mFile) mResult = OpenFailure(errno);
}

void JsonLinesTrace::Record(std::int64_t lMs, TraceKind kind, std::string_view sBytes) {
    if (!mResult.Ok()) return;
    if (!mStart) mStart = lMs;
    const std::string line = WriteTraceLine(lMs - *mStart, kind, sBytes) + "\n";
    if (const int error = WriteAll(mFile.Get(), line); error != 0)
        mResult = {IoStatus::Failed, error, SystemText(error)};
}

} // namespace qncomm
