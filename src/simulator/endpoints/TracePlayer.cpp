#include "endpoints/TracePlayer.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qnsim {
namespace {

using qncomm::TraceKind;
using qncomm::TraceRecord;

constexpr std::size_t LongestQuote = 40;
constexpr Micros MicrosPerMilli = 1000;
constexpr Micros BeforeLoss =
    100'000; // time for a host to read the last bytes before the line is lost

/// Bytes as a person can read them in one line.
std::string Quoted(std::string_view bytes) {
    constexpr std::string_view hex = "0123456789abcdef";
    std::string text = "\"";
    for (const char byte : bytes.substr(0, LongestQuote)) {
        const auto value = static_cast<unsigned char>(byte);
        if (byte == '\r') {
            text += "\\r";
        } else if (byte == '\n') {
            text += "\\n";
        } else if (byte >= ' ' && byte <= '~') {
            text += byte;
        } else {
            text += {'\\', 'x', hex[value >> 4U], hex[value & 15U]};
        }
    }
    return text + (bytes.size() > LongestQuote ? "\"…" : "\"");
}

} // namespace

TracePlayer::TracePlayer(std::vector<TraceRecord> records, bool delays)
    : mRecords(std::move(records)), mDelays(delays) {
    std::erase_if(mRecords, [](const TraceRecord& record) {
        if (record.kind == TraceKind::Event)
            return !record.bytes.starts_with(qncomm::LostLineEvent);
        return record.bytes.empty() && record.redacted == 0;
    });
}

std::size_t TracePlayer::SizeOfCurrent() const {
    return std::max(Current().bytes.size(), Current().redacted);
}

void TracePlayer::Advance(Micros now) {
    ++mNext;
    mMatched = 0;
    mBefore = now;
}

void TracePlayer::GiveOut(Micros now, bool hostGoesOn) {
    if (!mBefore) mBefore = now;
    while (!Finished() && Current().kind == TraceKind::Received) {
        if (!hostGoesOn && NextDue().value_or(now) > now) return;
        const TraceRecord& reply = Current();
        mOutput += reply.redacted > 0 ? std::string(reply.redacted, '.') : reply.bytes;
        Advance(now);
    }
}

std::optional<Micros> TracePlayer::NextDue() const {
    if (Finished() || Current().kind == TraceKind::Sent || !mMismatch.empty()) return std::nullopt;
    if (AtLoss() && !mDelays) return mBefore.value_or(0) + BeforeLoss;
    if (!mDelays || mNext == 0 || !mBefore) return mBefore.value_or(0);
    return *mBefore + (Current().ms - mRecords[mNext - 1].ms) * MicrosPerMilli;
}

std::string TracePlayer::ToHost(Micros now) {
    if (mMismatch.empty()) GiveOut(now, false);
    return std::exchange(mOutput, {});
}

void TracePlayer::FromHost(std::string_view bytes, Micros now) {
    while (!bytes.empty() && mMismatch.empty()) {
        GiveOut(now, true);   // replies that the host did not wait for
        if (AtLoss()) return; // lost, as they were in the recording
        if (Finished())
            mMismatch = "the trace ends at line "
                        + std::to_string(mRecords.empty() ? 0 : mRecords.back().line)
                        + ", the host went on with " + Quoted(bytes);
        else
            Compare(bytes, now);
    }
    if (mMismatch.empty()) GiveOut(now, false);
}

void TracePlayer::Compare(std::string_view& bytes, Micros now) {
    const std::size_t count = std::min(bytes.size(), SizeOfCurrent() - mMatched);
    if (Current().redacted == 0) {
        const std::string_view wanted = std::string_view(Current().bytes).substr(mMatched);
        const auto differs = std::mismatch(
            wanted.begin(), wanted.begin() + static_cast<std::ptrdiff_t>(count), bytes.begin());
        const auto same = static_cast<std::size_t>(differs.first - wanted.begin());
        if (same < count) {
            mMismatch = "line " + std::to_string(Current().line) + ", byte "
                        + std::to_string(mMatched + same + 1) + ": expected "
                        + Quoted(wanted.substr(same)) + ", got " + Quoted(bytes.substr(same));
            return;
        }
    }
    bytes.remove_prefix(count);
    mMatched += count;
    if (mMatched == SizeOfCurrent()) Advance(now);
}

std::string TracePlayer::Missing() const {
    for (std::size_t at = mNext; at < mRecords.size(); ++at) {
        const TraceRecord& record = mRecords[at];
        if (record.kind != TraceKind::Sent) continue;
        const std::size_t done = at == mNext ? mMatched : 0;
        return "line " + std::to_string(record.line) + ": expected "
               + (record.redacted > 0 ? std::to_string(record.redacted - done) + " bytes"
                                      : Quoted(std::string_view(record.bytes).substr(done)))
               + ", got nothing more";
    }
    return {};
}

} // namespace qnsim
