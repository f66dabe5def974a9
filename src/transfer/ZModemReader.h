#pragma once

#include "ZModemFrame.h"

#include <string_view>

namespace qncomm::transfer {

/// Takes the line apart into headers and data subpackets, from bytes that are cut anywhere.
class ZModemReader {
  public:
    enum class Item {
        None,      ///< the bytes are used up
        Header,    ///< Header() stands
        BadHeader, ///< one began and its sum or form is wrong
        Data,      ///< a subpacket: Content() and End() stand
        BadData,   ///< a subpacket is damaged; headers are looked for from here on
        Cancel,    ///< the other side's CANs
        Farewell,  ///< "OO", which ends a session
    };

    /// A subpacket longer than this is damage.
    static constexpr std::size_t MaxSubpacket = 32768;

    /// Takes bytes from the front of `in` up to the end of one item.
    Item Next(std::string_view& in);

    /// After a header that announces data: what follows is subpackets, until one ends its frame.
    void ExpectData();
    /// What follows is looked through for headers.
    void ExpectHeader();
    /// Whether a subpacket has begun and not ended.
    [[nodiscard]] bool IsInsideData() const {
        return mState == State::ContentSum || (mState == State::Content && !mContent.empty());
    }
    /// Control characters that arrive bare are noise: the sender escapes them all.
    void IgnoreControls(bool bIgnore) { mIgnoreControls = bIgnore; }

    [[nodiscard]] const ZModemHeader& Header() const { return mHeader; }
    [[nodiscard]] std::string_view Content() const { return mContent; }
    [[nodiscard]] char End() const { return mEnd; }

  private:
    enum class State {
        Hunt,
        Pad,
        Kind,
        HexBody,
        BinaryBody,
        LineEnd, ///< of a hex header that content follows
        Content,
        ContentSum,
    };

    Item Hunt(char c);
    Item ReadKind(char c);
    Item ReadHex(char c);
    Item ReadEscaped(char c);
    Item AfterDle(char c);
    Item Take(char c);
    Item FinishHeader();
    Item FinishData();
    Item Fail();
    void TakeRun(std::string_view& in);
    [[nodiscard]] bool IsNoise(char c) const;

    State mState = State::Hunt;
    bool mCrc32 = false;
    bool mHex = false;
    bool mIgnoreControls = false;
    bool mEscaped = false;
    bool mContentRead = false;
    int mCans = 0;
    char mLast = 0;
    char mEnd = 0;
    ZModemHeader mHeader;
    std::string mBody; ///< of a header, then of a sum
    std::string mContent;
};

} // namespace qncomm::transfer
