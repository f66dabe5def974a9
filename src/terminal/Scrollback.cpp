#include "Scrollback.h"

#include <algorithm>
#include <cstring>

namespace qncomm::terminal {

// A line's text is stored in one piece, so up to one line's width stays unused at the end of each
// round. A line has at most one run a character and one for what stands behind them.
Scrollback::Scrollback(std::size_t lines, std::uint16_t columns)
    : mRecords(lines),
      mColumns(columns),
      mTextCapacity((lines + 1) * columns),
      mRunCapacity(std::min(MostRuns, lines * (std::size_t{columns} + 1))),
      mText(std::make_unique_for_overwrite<char[]>(mTextCapacity)),
      mRuns(std::make_unique_for_overwrite<StoredRun[]>(mRunCapacity)) {}

void Scrollback::Append(const RowView& row) {
    if (mEnd - mFirst == mRecords.size()) ++mFirst;
    Record& record = RecordOf(mEnd);
    record = Record{.firstRun = mRunEnd, .wrapped = row.wrapped};
    StoreText(record, row.text);
    if (row.styles != nullptr || !row.fill.IsDefault()) StoreRuns(record, row);
    ++mEnd;
}

void Scrollback::StoreText(Record& record, std::string_view text) {
    const std::size_t place = mTextEnd % mTextCapacity;
    if (place + text.size() > mTextCapacity) mTextEnd += mTextCapacity - place;
    record.textAt = mTextEnd;
    record.length = static_cast<std::uint16_t>(text.size());
    if (!text.empty())
        std::memcpy(mText.get() + mTextEnd % mTextCapacity, text.data(), text.size());
    mTextEnd += text.size();
}

void Scrollback::StoreRuns(Record& record, const RowView& row) {
    std::size_t at = 0;
    while (at < row.text.size()) {
        const std::uint64_t style = row.styles != nullptr ? row.styles[at] : 0;
        const std::size_t start = at;
        while (at < row.text.size() && (row.styles == nullptr || row.styles[at] == style))
            ++at;
        StoreRun(record, style, static_cast<std::uint16_t>(at - start));
    }
    if (!row.fill.IsDefault()) StoreRun(record, row.fill.Bits(), 0);
}

void Scrollback::StoreRun(Record& record, std::uint64_t style, std::uint16_t length) {
    mRuns[mRunEnd % mRunCapacity] = {style, length};
    ++mRunEnd;
    ++record.runs;
}

void Scrollback::Widen(std::uint16_t columns) {
    if (columns <= mColumns) return;
    Scrollback wider(mRecords.size(), columns);
    wider.mFirst = wider.mEnd = mFirst;
    for (std::uint64_t number = mFirst; number < mEnd; ++number) {
        const TerminalLine line = Line(number);
        std::vector<std::uint64_t> styles;
        for (const StyleRun& run : line.runs)
            styles.insert(styles.end(), run.length, run.style.Bits());
        wider.Append({.text = line.text,
                      .styles = styles.empty() ? nullptr : styles.data(),
                      .fill = line.fill,
                      .wrapped = line.wrapped});
    }
    *this = std::move(wider);
}

TerminalLine Scrollback::Line(std::uint64_t number) const {
    if (number < mFirst || number >= mEnd) return {};
    const Record& record = RecordOf(number);
    TerminalLine line;
    line.text.assign(mText.get() + record.textAt % mTextCapacity, record.length);
    line.wrapped = record.wrapped;
    if (record.firstRun + mRunCapacity < mRunEnd) return line; // its colours have been overwritten
    for (std::uint16_t i = 0; i < record.runs; ++i) {
        const StoredRun& run = mRuns[(record.firstRun + i) % mRunCapacity];
        const Style style = Style::FromBits(run.style);
        if (run.length > 0)
            line.runs.push_back({run.length, style});
        else
            line.fill = style;
    }
    if (line.runs.size() == 1 && line.runs.front().style.IsDefault()) line.runs.clear();
    return line;
}

} // namespace qncomm::terminal
