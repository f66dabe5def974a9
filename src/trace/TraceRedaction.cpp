#include "trace/TraceRedaction.h"

#include "common/Text.h"
#include "platform/DurableFile.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <utility>

namespace qncomm {
namespace {

constexpr std::string_view ReplyEnd = "Ok\r\n";

bool IsDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

/// A line number and a statement. The last line of a file listing begins with a number too.
bool IsProgramLine(std::string_view line) {
    const std::size_t digits = static_cast<std::size_t>(
        std::find_if_not(line.begin(), line.end(), IsDigit) - line.begin());
    const std::string_view statement = line.substr(digits);
    return digits > 0 && statement.size() > 1 && statement.front() == ' '
           && !std::string_view(" BYTES ").starts_with(UpperCase(statement.substr(0, 7)));
}

/// A whole line of text that begins as a command does.
bool IsCommand(std::string_view bytes) {
    return !bytes.empty() && std::isalpha(static_cast<unsigned char>(bytes.front())) != 0
           && (bytes.back() == '\r' || bytes.back() == '\n')
           && std::all_of(bytes.begin(), bytes.end(), [](char byte) {
                  return (byte >= ' ' && byte <= '~') || byte == '\r' || byte == '\n';
              });
}

/// Kermit's packets begin with SOH, ZModem's headers with a pad and ZDLE.
bool HasPacket(std::string_view bytes) {
    return bytes.find('\x01') != std::string_view::npos
           || bytes.find("*\x18") != std::string_view::npos;
}

/// The length in IMAGE LOAD "NAME",LENGTH,… or FILE& LOAD "NAME",LENGTH; 0 when it names none.
std::size_t LoadLength(const std::string& command) {
    const std::size_t load = command.find(" LOAD ");
    const std::size_t quote = command.rfind("\",", command.find_last_of("0123456789"));
    if (load == std::string::npos || quote == std::string::npos || quote < load) return 0;
    std::size_t length = 0;
    std::from_chars(command.data() + quote + 2, command.data() + command.size(), length);
    return length;
}

/// Takes one line with its end, or what there is of it, from the front.
std::string_view TakeLine(std::string_view& bytes) {
    const std::size_t end = bytes.find_first_of("\r\n");
    std::size_t length = end == std::string_view::npos ? bytes.size() : end + 1;
    if (bytes.substr(0, length).ends_with('\r') && bytes.substr(length).starts_with('\n')) ++length;
    const std::string_view line = bytes.substr(0, length);
    bytes.remove_prefix(length);
    return line;
}

bool EndsLine(std::string_view piece) {
    return piece.ends_with('\r') || piece.ends_with('\n');
}

/// Appends a piece as a record of its own, or to the last one when that is of the same sort.
void Append(std::vector<TraceRecord>& records, const TraceRecord& whole, std::string_view piece,
            bool hidden) {
    if (records.empty() || (records.back().redacted > 0) != hidden)
        records.push_back({whole.line, whole.ms, whole.kind, {}, 0});
    if (hidden)
        records.back().redacted += piece.size();
    else
        records.back().bytes += piece;
}

} // namespace

std::vector<TraceRecord> TraceRedaction::Redact(const TraceRecord& record) {
    if (EndsTransfer(record)) mTransfer = false;
    if (record.kind == TraceKind::Event || record.redacted > 0) return {record};
    std::vector<TraceRecord> records;
    std::string_view left = record.bytes;
    if (record.kind == TraceKind::Sent && mLoading > 0) {
        const std::string_view contents = left.substr(0, mLoading);
        Append(records, record, contents, true);
        mLoading -= contents.size();
        left.remove_prefix(contents.size());
    }
    mTransfer = mTransfer || HasPacket(left);
    while (!left.empty()) {
        const std::string_view piece = mLoading > 0 && record.kind == TraceKind::Sent
                                           ? std::exchange(left, {})
                                           : TakeLine(left);
        Append(records, record, piece, Hides(record.kind, piece));
    }
    if (record.kind == TraceKind::Received) Follow(record.bytes);
    return records;
}

bool TraceRedaction::EndsTransfer(const TraceRecord& record) const {
    if (record.kind == TraceKind::Event) return true;
    return record.kind == TraceKind::Sent && mTail == ReplyEnd && IsCommand(record.bytes);
}

bool TraceRedaction::Hides(TraceKind kind, std::string_view piece) {
    const bool sent = kind == TraceKind::Sent;
    if (sent && mLoading > 0) {
        mLoading -= std::min(mLoading, piece.size());
        return true;
    }
    if (mTransfer) return true;
    Direction& direction = mDirections[sent ? 0 : 1];
    direction.line += piece;
    const bool printed = !sent && mPrinting && piece != ReplyEnd;
    const bool hidden = direction.hidden || printed || IsProgramLine(direction.line);
    direction.hidden = hidden;
    if (!EndsLine(piece)) return hidden;
    direction.hidden = false;
    const std::string line = UpperCase(std::exchange(direction.line, {}));
    if (sent) OnCommand(line);
    return hidden;
}

void TraceRedaction::OnCommand(const std::string& line) {
    mLoading = LoadLength(line);
    mTransfer = line.find("TRANSFER ") != std::string::npos;
    mPrinting = line.find("COPY ") != std::string::npos && line.find("\"UART") != std::string::npos;
    mTail.clear();
}

void TraceRedaction::Follow(std::string_view bytes) {
    mTail.append(bytes);
    mTail.erase(0, mTail.size() - std::min(mTail.size(), ReplyEnd.size()));
    if (mTail == ReplyEnd) mPrinting = false;
}

IoResult RedactTrace(const std::string& sFrom, const std::string& sTo) {
    const TraceReading reading = ReadTrace(sFrom);
    if (!reading.result.Ok()) return reading.result;
    std::string text;
    TraceRedaction redaction;
    for (const TraceRecord& record : reading.records)
        for (const TraceRecord& kept : redaction.Redact(record))
            text += TraceLineOf(kept) + '\n';
    return SaveFile(sTo, text);
}

} // namespace qncomm
