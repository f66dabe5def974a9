#pragma once

#include "GridRow.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace qncomm::terminal {

/// The lines that have left the screen at its top, the newest `lines` of them, each with a number
/// that it keeps: the first line that ever left is 0.
///
/// Text and styles stand in two rings of fixed size. The text ring has space for every line at full
/// width. The style ring is bounded by itself: when wildly coloured lines fill it, the oldest lines
/// lose their colours, never their text.
class Scrollback {
  public:
    /// Lines that are kept (at least 1) and their widest length.
    Scrollback(std::size_t lines, std::uint16_t columns);

    /// Text of at most the widest length.
    void Append(const RowView& row);
    void Clear() { mFirst = mEnd; }
    /// Makes space for longer lines; what is kept stays.
    void Widen(std::uint16_t columns);

    /// The lines kept are Begin() up to, not including, End(). End() never falls.
    std::uint64_t Begin() const { return mFirst; }
    std::uint64_t End() const { return mEnd; }

    /// The line of that number; an empty one when it is not kept.
    TerminalLine Line(std::uint64_t number) const;

  private:
    struct Record {
        std::uint64_t textAt = 0;   ///< place in all text ever stored
        std::uint64_t firstRun = 0; ///< place in all runs ever stored
        std::uint16_t length = 0;
        std::uint16_t runs = 0;
        bool wrapped = false;
    };
    struct StoredRun {
        std::uint64_t style;
        std::uint16_t length; ///< 0: the style of the row behind its text
    };

    /// In runs, 16 bytes each.
    static constexpr std::size_t MostRuns = std::size_t{1} << 18;

    Record& RecordOf(std::uint64_t number) { return mRecords[number % mRecords.size()]; }
    const Record& RecordOf(std::uint64_t number) const {
        return mRecords[number % mRecords.size()];
    }
    void StoreText(Record& record, std::string_view text);
    void StoreRuns(Record& record, const RowView& row);
    void StoreRun(Record& record, std::uint64_t style, std::uint16_t length);

    std::vector<Record> mRecords;
    std::uint16_t mColumns;
    std::size_t mTextCapacity;
    std::size_t mRunCapacity;
    /// Not initialised: a page is touched when the first line that needs it arrives.
    std::unique_ptr<char[]> mText;
    std::unique_ptr<StoredRun[]> mRuns;
    std::uint64_t mTextEnd = 0;
    std::uint64_t mRunEnd = 0;
    std::uint64_t mFirst = 0;
    std::uint64_t mEnd = 0;
};

} // namespace qncomm::terminal
