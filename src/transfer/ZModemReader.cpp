#include "ZModemReader.h"

#include "Crc.h"

#include <cstddef>

namespace qncomm::transfer {

namespace {

constexpr std::size_t HeaderBytes = 5;

// Bytes that a subpacket's content may hold as they are; the others are looked at one by one.
constexpr std::array<bool, 256> MakePlain(bool bControlsAreNoise) {
    std::array<bool, 256> table{};
    for (unsigned c = 0; c < 256; ++c) {
        const unsigned low = c & 0x7FU;
        table[c] = c != 0x18 && low != 0x11 && low != 0x13 && !(bControlsAreNoise && low < 0x20);
    }
    return table;
}

constexpr std::array<bool, 256> Plain = MakePlain(false);
constexpr std::array<bool, 256> PlainNoControls = MakePlain(true);

bool EndsLine(char c) {
    return (c & 0x7F) == '\r' || (c & 0x7F) == '\n';
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

std::uint32_t Sum32(std::string_view sum) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        value |= static_cast<std::uint32_t>(static_cast<unsigned char>(sum[i])) << (8U * i);
    }
    return value;
}

bool SumIsRight(bool bCrc32, std::string_view bytes, std::string_view mark, std::string_view sum) {
    if (bCrc32) return ~Crc32(Crc32(Crc32Start, bytes), mark) == Sum32(sum);
    return Crc16High(Crc16High(Crc16High(0, bytes), mark), sum) == 0;
}

} // namespace

void ZModemReader::ExpectData() {
    // A hex header is a line of its own: its end stands before the content.
    mState = mHex ? State::LineEnd : State::Content;
    mContent.clear();
    mContentRead = false;
    mEscaped = false;
    mCans = 0;
}

void ZModemReader::ExpectHeader() {
    mState = State::Hunt;
    mEscaped = false;
    mCans = 0;
}

ZModemReader::Item ZModemReader::Next(std::string_view& in) {
    if (mContentRead) {
        mContentRead = false;
        mContent.clear();
    }
    Item item = Item::None;
    while (item == Item::None && !in.empty()) {
        if (mState == State::Content && !mEscaped) {
            TakeRun(in);
            if (in.empty()) break;
        }
        const char c = in.front();
        if (mState == State::LineEnd) {
            mState = State::Content;
            if (EndsLine(c) || IsNoise(c)) {
                if ((c & 0x7F) == '\r') mState = State::LineEnd;
                in.remove_prefix(1);
            }
            continue;
        }
        in.remove_prefix(1);
        switch (mState) {
        case State::Hunt:
        case State::Pad:
            item = Hunt(c);
            break;
        case State::Kind:
            item = ReadKind(c);
            break;
        case State::HexBody:
            item = ReadHex(c);
            break;
        default:
            item = ReadEscaped(c);
            break;
        }
    }
    return item;
}

ZModemReader::Item ZModemReader::Hunt(char c) {
    const char last = mLast;
    mLast = c;
    if (c == zm::Dle) {
        if (++mCans >= zm::CansToCancel) {
            mCans = 0;
            return Item::Cancel;
        }
        if (mState == State::Pad) mState = State::Kind;
        return Item::None;
    }
    mCans = 0;
    mState = c == zm::PadByte ? State::Pad : State::Hunt;
    if (c != 'O' || last != 'O') return Item::None;
    mLast = 0;
    return Item::Farewell;
}

ZModemReader::Item ZModemReader::ReadKind(char c) {
    if (c != zm::HexFormat && c != zm::Bin16 && c != zm::Bin32) {
        mState = State::Hunt;
        return Hunt(c);
    }
    mCans = 0;
    mBody.clear();
    mEscaped = false;
    mCrc32 = c == zm::Bin32;
    mHex = c == zm::HexFormat;
    mState = mHex ? State::HexBody : State::BinaryBody;
    return Item::None;
}

ZModemReader::Item ZModemReader::ReadHex(char c) {
    c = static_cast<char>(c & 0x7F); // a line with parity may have touched the top bit
    if (HexDigit(c) < 0) {
        if (IsNoise(c)) return Item::None;
        mState = State::Hunt;
        Hunt(c);
        return Item::BadHeader;
    }
    mBody.push_back(c);
    if (mBody.size() < 2 * (HeaderBytes + 2)) return Item::None;
    std::string bytes;
    for (std::size_t i = 0; i < mBody.size(); i += 2) {
        bytes.push_back(static_cast<char>(HexDigit(mBody[i]) * 16 + HexDigit(mBody[i + 1])));
    }
    mBody = std::move(bytes);
    return FinishHeader();
}

// Content up to the next byte that needs a look.
void ZModemReader::TakeRun(std::string_view& in) {
    const auto& plain = mIgnoreControls ? PlainNoControls : Plain;
    std::size_t run = 0;
    while (run < in.size() && plain[static_cast<unsigned char>(in[run])]) {
        ++run;
    }
    if (mContent.size() + run > MaxSubpacket) run = MaxSubpacket - mContent.size();
    mContent.append(in.substr(0, run));
    in.remove_prefix(run);
}

bool ZModemReader::IsNoise(char c) const {
    const int low = c & 0x7F;
    return low == 0x11 || low == 0x13 || (mIgnoreControls && low < 0x20);
}

ZModemReader::Item ZModemReader::ReadEscaped(char c) {
    if (mEscaped) return AfterDle(c);
    if (c == zm::Dle) {
        mEscaped = true;
        mCans = 1;
        return Item::None;
    }
    return IsNoise(c) ? Item::None : Take(c);
}

ZModemReader::Item ZModemReader::AfterDle(char c) {
    if (c == zm::Dle) {
        if (++mCans < zm::CansToCancel) return Item::None;
        ExpectHeader();
        return Item::Cancel;
    }
    if (IsNoise(c)) return Item::None;
    mEscaped = false;
    const bool ends = c >= zm::EndFrame && c <= zm::EndWait;
    const bool byte = c == 'l' || c == 'm' || (c & 0x60) == 0x40;
    if (mCans > 1 || !(byte || (ends && mState == State::Content))) {
        const Item item = Fail();
        Hunt(c); // it may be the first byte of the header that repairs this
        return item;
    }
    if (ends) {
        mEnd = c;
        mBody.clear();
        mState = State::ContentSum;
        return Item::None;
    }
    if (c == 'l') return Take('\x7F');
    if (c == 'm') return Take('\xFF');
    return Take(static_cast<char>(c ^ 0x40));
}

ZModemReader::Item ZModemReader::Take(char c) {
    if (mState == State::Content) {
        if (mContent.size() >= MaxSubpacket) return Fail();
        mContent.push_back(c);
        return Item::None;
    }
    mBody.push_back(c);
    const std::size_t sum = mCrc32 ? 4 : 2;
    if (mState == State::ContentSum) return mBody.size() < sum ? Item::None : FinishData();
    return mBody.size() < HeaderBytes + sum ? Item::None : FinishHeader();
}

ZModemReader::Item ZModemReader::FinishHeader() {
    mLast = 0;
    ExpectHeader();
    const std::string_view body = mBody;
    const auto bytes = body.substr(0, HeaderBytes);
    if (!SumIsRight(mCrc32, bytes, {}, body.substr(HeaderBytes))) return Item::BadHeader;
    mHeader.type = static_cast<std::uint8_t>(bytes[0]);
    for (std::size_t i = 0; i < mHeader.bytes.size(); ++i) {
        mHeader.bytes[i] = static_cast<std::uint8_t>(bytes[i + 1]);
    }
    return Item::Header;
}

ZModemReader::Item ZModemReader::FinishData() {
    if (!SumIsRight(mCrc32, mContent, {&mEnd, 1}, mBody)) return Fail();
    const bool more = mEnd == zm::EndGo || mEnd == zm::EndQuery;
    mState = more ? State::Content : State::Hunt;
    mContentRead = true;
    return Item::Data;
}

ZModemReader::Item ZModemReader::Fail() {
    const bool header = mState == State::BinaryBody;
    ExpectHeader();
    return header ? Item::BadHeader : Item::BadData;
}

} // namespace qncomm::transfer
