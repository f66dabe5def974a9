#pragma once

#include "trace/TraceSink.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace qncomm {

/// One row of what travels on a line, for a person to read.
struct TraceRow {
    std::int64_t ms = 0;               ///< when its first byte travelled
    TraceKind kind = TraceKind::Event; ///< which way its bytes went
    /// Bytes of the line with every control character by its name, such as "42<CR><LF>"; or hex
    /// digits; or an event's text.
    std::string text;
};

/// Cuts what travels into rows. It keeps the bytes of one row at most, so a line that never stops
/// talking needs no more memory than a silent one.
class TraceRows {
  public:
    /// What the rows hold.
    enum class Form {
        Text, ///< a line of text each, its end included; a long line takes several rows
        Hex,  ///< 16 bytes each, and beside them what is printing ASCII
    };

    /// Called with each row, in order.
    using Show = std::function<void(const TraceRow&)>;

    /// Rows of that form, for show, which must not be empty.
    TraceRows(Form form, Show show);

    /// The next record of the line, as TraceSink::Record has it. Bytes that end no row wait for
    /// more; bytes of the other direction and events end it.
    void Add(std::int64_t lMs, TraceKind kind, std::string_view sBytes);

    /// Shows what waits as a row of its own, as after a silence.
    void Flush();

  private:
    /// How many of these bytes belong to the row that waits.
    std::size_t MissingOfRow(std::string_view bytes) const;
    bool IsWhole() const;
    std::string Text() const;

    Form mForm;
    Show mShow;
    TraceRow mRow; ///< the one that waits; its text is the bytes as they came
};

} // namespace qncomm
