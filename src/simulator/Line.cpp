#include "Line.h"

#include <algorithm>
#include <array>

namespace qnsim {
namespace {

constexpr std::int64_t NsPerMicro = 1000;
constexpr std::int64_t NsPerSecond = 1'000'000'000;

// What a receiver makes of bits that were sent at another rate: long runs of one level. None of
// these is a letter, a digit or a line end, with or without its eighth bit.
constexpr std::array<char, 8> NoiseBytes{'\x00', '\xFE', '\xF8', '\x80',
                                         '\xC0', '\xE0', '\xFC', '\xFF'};

} // namespace

std::int64_t Wire::Chunk::DueNs(std::size_t index) const {
    return startNs + static_cast<std::int64_t>(index + 1) * perByteNs;
}

void Wire::Put(std::string_view bytes, std::int64_t perByteNs, Micros now) {
    if (bytes.empty()) return;
    const std::int64_t start = std::max(mFreeNs, now * NsPerMicro);
    if (perByteNs == 0 && !mChunks.empty() && mChunks.back().perByteNs == 0
        && mChunks.back().startNs >= start) {
        mChunks.back().bytes += bytes;
    } else {
        mChunks.push_back({std::string(bytes), 0, start, perByteNs});
    }
    mSize += bytes.size();
    mFreeNs = std::max(mFreeNs, mChunks.back().DueNs(mChunks.back().bytes.size() - 1));
}

std::size_t Wire::Passed(const Chunk& chunk, std::int64_t nowNs) const {
    if (nowNs < chunk.startNs) return 0;
    if (chunk.perByteNs == 0) return chunk.bytes.size();
    return std::min(chunk.bytes.size(),
                    static_cast<std::size_t>((nowNs - chunk.startNs) / chunk.perByteNs));
}

std::string Wire::Take(Micros now, std::size_t max) {
    std::string result;
    while (!mChunks.empty() && result.size() < max) {
        Chunk& chunk = mChunks.front();
        const std::size_t passed = Passed(chunk, now * NsPerMicro);
        if (passed <= chunk.taken) break;
        const std::size_t count = std::min(passed - chunk.taken, max - result.size());
        if (chunk.taken == 0 && count == chunk.bytes.size() && result.empty()) {
            result = std::move(chunk.bytes);
            mChunks.pop_front();
            mSize -= count;
            continue;
        }
        result.append(chunk.bytes, chunk.taken, count);
        chunk.taken += count;
        mSize -= count;
        if (chunk.taken == chunk.bytes.size()) mChunks.pop_front();
    }
    return result;
}

std::size_t Wire::OnTheWay(Micros now) const {
    std::size_t passed = 0;
    for (const Chunk& chunk : mChunks) {
        const std::size_t count = Passed(chunk, now * NsPerMicro);
        if (count <= chunk.taken) break;
        passed += count - chunk.taken;
    }
    return mSize - passed;
}

std::optional<Micros> Wire::DueOf(std::size_t bytes) const {
    std::optional<Micros> due;
    for (const Chunk& chunk : mChunks) {
        const std::size_t count = std::min(bytes, chunk.bytes.size() - chunk.taken);
        due = (chunk.DueNs(chunk.taken + count - 1) + NsPerMicro - 1) / NsPerMicro;
        bytes -= count;
        if (bytes == 0) break;
    }
    return due;
}

void Wire::HoldUntil(Micros time) {
    mFreeNs = std::max(mFreeNs, time * NsPerMicro);
}

void Wire::Clear() {
    mChunks.clear();
    mSize = 0;
    mFreeNs = 0;
}

Line::Line(const Uart& uart, const Options& options)
    : mUart(uart),
      mPaced(options.paced),
      mLost(options.faults.lost),
      mDoubled(options.faults.doubled),
      mFlipped(options.faults.flipped),
      mStall(options.faults.stall),
      mStallMs(options.faults.stallMs),
      mCutAfter(options.faults.cutAfter) {
    if (mCutAfter && *mCutAfter == 0) mCut = true;
}

void Wire::ClearOnTheWay(Micros now) {
    std::string passed = Take(now, mSize);
    Clear();
    Put(passed, 0, now);
}

bool Line::TimingMatches() const {
    return mHost.baud.value_or(mUart.baud) == mUart.baud
           && mHost.dataBits.value_or(mUart.dataBits) == mUart.dataBits;
}

void Line::SetHostFormat(const LineFormat& format, Micros now) {
    const bool matched = Matches();
    mHost = format;
    if (Matches() != matched) mToHost.ClearOnTheWay(now);
}

void Line::DropToHost() {
    mToHost.Clear();
    mHostErrors = {};
}

void Line::NoteHostErrors() {
    // A receiver without parity takes the sender's for the end of the byte.
    const bool parityAlone = TimingMatches() && mHost.parity != 'n';
    (parityAlone ? mHostErrors.parity : mHostErrors.frame) = true;
}

std::string Line::Garble(std::string_view bytes, int fromBaud, int toBaud) {
    // A faster receiver sees more characters than were sent, a slower one fewer.
    constexpr std::size_t mostPerByte = 3;
    const std::size_t more = std::clamp<std::size_t>(
        static_cast<std::size_t>(std::max(toBaud / std::max(fromBaud, 1), 1)), 1, mostPerByte);
    const std::size_t fewer = static_cast<std::size_t>(std::max(fromBaud / std::max(toBaud, 1), 1));
    std::string result((bytes.size() * more + fewer - 1) / fewer, '\0');
    for (char& c : result)
        c = NoiseBytes[mNoise() % NoiseBytes.size()];
    return result;
}

void Line::Damage(std::string& bytes) {
    if (!mLost.IsLoaded() && !mDoubled.IsLoaded() && !mFlipped.IsLoaded()) return;
    std::string result;
    result.reserve(bytes.size());
    for (char c : bytes) {
        if (mLost.Strikes()) continue;
        if (mFlipped.Strikes()) {
            const auto bit = mFlipped.Below(static_cast<unsigned>(mUart.dataBits));
            c = static_cast<char>(static_cast<unsigned char>(c) ^ (1U << bit));
        }
        result += c;
        if (mDoubled.Strikes()) result += c;
    }
    bytes = std::move(result);
}

void Line::StripToSevenBits(std::string& bytes) const {
    if (mUart.dataBits != 7) return;
    for (char& c : bytes)
        c = static_cast<char>(static_cast<unsigned char>(c) & 0x7FU);
}

std::int64_t Line::ByteTimeNs(bool fromHost) const {
    if (!mPaced) return 0;
    Uart sender = mUart;
    if (fromHost) {
        sender.baud = mHost.baud.value_or(mUart.baud);
        sender.parity = mHost.parity.value_or(mUart.parity);
        sender.dataBits = mHost.dataBits.value_or(mUart.dataBits);
        sender.stopBits = mHost.stopBits.value_or(mUart.stopBits);
    }
    return NsPerSecond * sender.BitsPerCharacter() / std::max(sender.baud, 1);
}

void Line::HostSends(std::string_view bytes, Micros now) {
    if (mCut) return;
    std::string received(bytes);
    if (!Matches()) received = Garble(bytes, mHost.baud.value_or(mUart.baud), mUart.baud);
    StripToSevenBits(received);
    Damage(received);
    mToPrinter.Put(received, ByteTimeNs(true), now);
}

std::size_t Line::UntilCut(std::size_t bytes) {
    if (!mCutAfter) return bytes;
    const std::size_t left = *mCutAfter - std::min(*mCutAfter, mSentToHost);
    if (bytes >= left) mCut = true;
    return std::min(bytes, left);
}

void Line::PrinterSends(std::string_view bytes, Micros now) {
    if (mCut || bytes.empty()) return;
    std::string received(bytes.substr(0, UntilCut(bytes.size())));
    mSentToHost += received.size();
    if (!Matches()) {
        received = Garble(received, mUart.baud, mHost.baud.value_or(mUart.baud));
        NoteHostErrors();
    }
    StripToSevenBits(received);
    Damage(received);
    if (!mStall.IsLoaded()) {
        mToHost.Put(received, ByteTimeNs(false), now);
        return;
    }
    for (std::size_t i = 0; i < received.size(); ++i) {
        if (mStall.Strikes()) mToHost.HoldUntil(now + Micros{mStallMs} * 1000);
        mToHost.Put(std::string_view(received).substr(i, 1), ByteTimeNs(false), now);
    }
}

} // namespace qnsim
