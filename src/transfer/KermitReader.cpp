#include "KermitReader.h"

#include "KermitCheck.h"

#include <algorithm>

namespace qncomm::transfer {

namespace {

constexpr std::size_t ShortHeader = 3; // length, sequence, type
// One more than a digit of a length may say: programs are about that fill it to the brim.
constexpr unsigned LongestTaken = 95;
constexpr std::size_t LongHeader = 6; // and two of the extended length and the header's check

} // namespace

KermitReader::Item KermitReader::Next(std::string_view& in) {
    if (!mStrip) return NextStripped(in);
    mStripped.assign(in);
    for (char& c : mStripped) {
        c = static_cast<char>(c & 0x7F);
    }
    std::string_view stripped = mStripped;
    const Item item = NextStripped(stripped);
    in.remove_prefix(in.size() - stripped.size());
    return item;
}

KermitReader::Item KermitReader::NextStripped(std::string_view& in) {
    while (!in.empty()) {
        if (!mInside) {
            const auto mark = in.find(kermit::Mark);
            in.remove_prefix(std::min(mark, in.size()));
            if (in.empty()) return Item::None;
            in.remove_prefix(1);
            mInside = true;
            mBody.clear();
            continue;
        }
        TakeBody(in);
        if (!in.empty() && in.front() == kermit::Mark && mBody.size() < Needed()) {
            // What came before the mark has lost its end. A row of marks is only a slow start.
            in.remove_prefix(1);
            const bool begun = !mBody.empty();
            mBody.clear();
            if (begun) return Item::Damage;
            continue;
        }
        if (mBody.empty()) continue;
        if (HeaderIsWrong()) {
            mInside = false;
            return Item::Damage;
        }
        if (mBody.size() >= Needed()) return Finish();
    }
    return Item::None;
}

// Up to the next mark or the bytes that are known to be needed.
void KermitReader::TakeBody(std::string_view& in) {
    const std::size_t wanted = Needed() - mBody.size();
    const std::string_view part = in.substr(0, wanted);
    const std::string_view taken = part.substr(0, part.find(kermit::Mark));
    mBody.append(taken);
    in.remove_prefix(taken.size());
}

// Bytes of the body that must be there before more can be said.
std::size_t KermitReader::Needed() const {
    if (mBody.empty()) return 1;
    const unsigned length = kermit::FromChar(mBody[0]);
    if (length != 0) return length <= LongestTaken ? 1 + length : 1;
    if (mBody.size() < LongHeader) return LongHeader;
    return LongHeader + std::size_t{kermit::FromChar(mBody[3])} * 95 + kermit::FromChar(mBody[4]);
}

bool KermitReader::HeaderIsWrong() const {
    const unsigned length = kermit::FromChar(mBody[0]);
    if (length != 0) return length < 3 || length > LongestTaken;
    if (mBody.size() < LongHeader) return false;
    const std::string_view header = mBody;
    return KermitCheck(1, header.substr(0, LongHeader - 1))[0] != mBody[LongHeader - 1]
           || kermit::FromChar(mBody[3]) > LongestTaken
           || kermit::FromChar(mBody[4]) > LongestTaken;
}

KermitReader::Item KermitReader::Finish() {
    mInside = false;
    const bool isLong = kermit::FromChar(mBody[0]) == 0;
    const std::size_t start = isLong ? LongHeader : ShortHeader;
    const char type = mBody[2];
    mPacket.type = type;
    mPacket.sequence = kermit::FromChar(mBody[1]);
    if (mPacket.sequence >= kermit::Sequences) return Item::Damage;
    const bool opens = type == kermit::SendInit || type == kermit::ServerInit;
    return TakeWith(opens ? 1 : mCheck, start) ? Item::Packet : Item::Damage;
}

bool KermitReader::TakeWith(unsigned check, std::size_t start) {
    if (mBody.size() < start + check) return false;
    const std::string_view body = mBody;
    const auto summed = body.substr(0, body.size() - check);
    if (KermitCheck(check, summed) != body.substr(summed.size())) return false;
    mPacket.data.assign(summed.substr(start));
    return true;
}

} // namespace qncomm::transfer
