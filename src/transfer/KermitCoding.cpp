#include "KermitCoding.h"

#include <algorithm>

namespace qncomm::transfer {

namespace {

constexpr std::size_t ShortestRun = 4;
constexpr std::size_t LongestRun = 94;
constexpr std::size_t LongestCoded =
    5; // repeat prefix, count, bit prefix, control prefix, character

// Characters that something between the two ends is known to act on: interrupts, line ends, flow
// control, the escapes of terminal servers and modems.
constexpr std::string_view Risky("\x00\x01\x03\x0D\x10\x11\x13\x18\x1D\x1E\x7F", 11);
// What ends or begins a packet.
constexpr std::string_view Needed("\x00\x01\x0D", 3);

bool IsControl(unsigned c) {
    return (c & 0x7FU) < 32 || (c & 0x7FU) == 127;
}

bool IsPrefixed(unsigned c, KermitPrefixing prefixing) {
    if (!IsControl(c)) return false;
    switch (prefixing) {
    case KermitPrefixing::Least:
        return Needed.find(static_cast<char>(c)) != std::string_view::npos;
    case KermitPrefixing::Cautious:
        return Risky.find(static_cast<char>(c & 0x7FU)) != std::string_view::npos;
    default:
        return true;
    }
}

} // namespace

KermitCoding::KermitCoding(const KermitTerms& terms, KermitPrefixing prefixing)
    : mTheirControlPrefix(terms.controlPrefix),
      mBitPrefix(terms.bitPrefix),
      mRepeatPrefix(terms.repeatPrefix) {
    for (unsigned c = 0; c < mForms.size(); ++c) {
        const char low = static_cast<char>(c & 0x7FU);
        const bool isPrefix = low == mControlPrefix || (mBitPrefix != 0 && low == mBitPrefix)
                              || (mRepeatPrefix != 0 && low == mRepeatPrefix);
        if (isPrefix) mForms[c] = Form::Quoted;
        // With the eighth bit taken off, a character is as risky as its low half.
        const unsigned travels = mBitPrefix != 0 ? c & 0x7FU : c;
        if (IsPrefixed(travels, prefixing)) mForms[c] = Form::Control;
        mAsIs[c] = mForms[c] == Form::Plain && (mBitPrefix == 0 || c < 0x80);
        const auto arrives = static_cast<char>(c);
        mEnds[c] = arrives == mTheirControlPrefix || (mBitPrefix != 0 && arrives == mBitPrefix)
                   || (mRepeatPrefix != 0 && arrives == mRepeatPrefix);
    }
}

void KermitCoding::EncodeOne(char c, std::string& data) const {
    const Form form = mForms[static_cast<unsigned char>(c)];
    if (mBitPrefix != 0 && (c & 0x80) != 0) {
        data.push_back(mBitPrefix);
        c = static_cast<char>(c & 0x7F);
    }
    if (form != Form::Plain) data.push_back(mControlPrefix);
    data.push_back(form == Form::Control ? kermit::Control(c) : c);
}

// How many bytes at the front travel as they are and are not worth a count.
std::size_t KermitCoding::PlainRun(std::string_view bytes, std::size_t room) const {
    const std::size_t limit = std::min(bytes.size(), room);
    std::size_t run = 0;
    while (run < limit && mAsIs[static_cast<unsigned char>(bytes[run])]
           && (run + 1 == bytes.size() || bytes[run + 1] != bytes[run])) {
        ++run;
    }
    return run;
}

void KermitCoding::Encode(std::string_view& bytes, std::size_t room, std::string& data) const {
    std::size_t at = 0;
    const std::size_t end = data.size() + room;
    // Near the end of the room a character is coded apart first, to see whether it fits.
    std::string coded;
    while (at < bytes.size()) {
        const std::size_t plain = PlainRun(bytes.substr(at), end - data.size());
        data.append(bytes.substr(at, plain));
        at += plain;
        if (at == bytes.size() || data.size() == end) break;
        const char c = bytes[at];
        std::size_t run = 1;
        if (mRepeatPrefix != 0 && at + 1 < bytes.size() && bytes[at + 1] == c) {
            const auto part = bytes.substr(at, LongestRun);
            run = std::min(part.find_first_not_of(c), part.size());
            if (run < ShortestRun) run = 1;
        }
        const bool tight = data.size() + LongestCoded > end;
        std::string& out = tight ? coded : data;
        coded.clear();
        if (run > 1) out.append({mRepeatPrefix, kermit::ToChar(static_cast<unsigned>(run))});
        EncodeOne(c, out);
        if (tight) {
            if (data.size() + coded.size() > end) break;
            data += coded;
        }
        at += run;
    }
    bytes.remove_prefix(at);
}

std::string KermitCoding::EncodeText(std::string_view text, std::size_t room) const {
    std::string data;
    Encode(text, room, data);
    return data;
}

bool KermitCoding::Decode(std::string_view data, std::string& bytes) const {
    std::size_t at = 0;
    const auto more = [&] { return at < data.size(); };
    while (more()) {
        std::size_t plain = at;
        while (plain < data.size() && !mEnds[static_cast<unsigned char>(data[plain])]) {
            ++plain;
        }
        bytes.append(data.substr(at, plain - at));
        at = plain;
        if (!more()) break;
        char c = data[at++];
        std::size_t run = 1;
        if (mRepeatPrefix != 0 && c == mRepeatPrefix) {
            if (!more()) return false;
            run = kermit::FromChar(data[at++]);
            if (run > LongestRun || !more()) return false;
            c = data[at++];
        }
        int top = 0;
        if (mBitPrefix != 0 && c == mBitPrefix) {
            if (!more()) return false;
            top = 0x80;
            c = data[at++];
        }
        if (c == mTheirControlPrefix) {
            if (!more()) return false;
            c = data[at++];
            const int low = c & 0x7F;
            if (low >= 0x3F && low <= 0x5F) c = kermit::Control(c);
        }
        bytes.append(run, static_cast<char>(c | top));
    }
    return true;
}

} // namespace qncomm::transfer
