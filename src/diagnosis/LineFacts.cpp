#include "diagnosis/LineFacts.h"

#include "trace/TraceRows.h"

#include <algorithm>

namespace qncomm {
namespace {

constexpr std::size_t MostKept = 8192;
constexpr std::size_t MostShown = 48;

bool IsTextByte(char byte) {
    return (byte >= ' ' && byte < 0x7F) || byte == '\r' || byte == '\n' || byte == '\t';
}

/// Whether nearly all of it is printing: random bytes are so for one third.
bool IsText(std::string_view bytes) {
    const auto printing =
        static_cast<std::size_t>(std::count_if(bytes.begin(), bytes.end(), IsTextByte));
    return printing * 10 >= bytes.size() * 9;
}

bool Holds(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

bool IsEcho(const LineSegment::Exchange& exchange) {
    return std::string_view(exchange.sent).starts_with(exchange.received);
}

Answer JudgeText(std::string_view text) {
    constexpr std::size_t probesEcho = 2; // the command line holds the word, and so does its answer
    std::size_t words = 0;
    for (std::size_t at = text.find("HELLO"); at != std::string_view::npos;
         at = text.find("HELLO", at + 1))
        ++words;
    if (Holds(text, "Ok\r\n") && words > 0) return Answer::Half;
    if (words > 0 && words < probesEcho + 1 && Holds(text, "IMMEDIATE ON")) return Answer::Taken;
    return Answer::Text;
}

} // namespace

std::string LineSegment::Received() const {
    std::string all;
    for (const Exchange& exchange : exchanges)
        all += exchange.received;
    return all;
}

bool LineSegment::Sent() const {
    return std::ranges::any_of(exchanges, [](const Exchange& each) { return !each.sent.empty(); });
}

void LineRecord::Record(std::int64_t lMs, TraceKind kind, std::string_view sBytes) {
    if (mNext != nullptr) mNext->Record(lMs, kind, sBytes);
    if (kind == TraceKind::Event) {
        Note(sBytes);
        return;
    }
    if (mSegments.empty()) return;
    auto& exchanges = mSegments.back().exchanges;
    const bool sent = kind == TraceKind::Sent;
    if (exchanges.empty() || (sent && !exchanges.back().received.empty())) exchanges.emplace_back();
    std::string& kept = sent ? exchanges.back().sent : exchanges.back().received;
    kept += sBytes.substr(0, MostKept - std::min(kept.size(), MostKept));
}

void LineRecord::Note(std::string_view event) {
    if (event.starts_with(OpenLineEvent)) {
        mSegments.emplace_back();
        mSegments.back().settings = event.substr(event.rfind(' ') + 1);
    } else if (event.starts_with(LineErrorsEvent) && !mSegments.empty()) {
        LineErrors& errors = mSegments.back().errors;
        errors.frame = errors.frame || Holds(event, " frame");
        errors.overrun = errors.overrun || Holds(event, " overrun");
        errors.parity = errors.parity || Holds(event, " parity");
        errors.overflow = errors.overflow || Holds(event, " overflow");
        if (Holds(event, " frame") || Holds(event, " parity")) ++mSegments.back().damaged;
    } else if (event == NoModemLinesEvent) {
        mNoModemLines = true;
    }
}

Answer Judge(const std::vector<LineSegment>& search) {
    std::size_t answered = 0;
    std::size_t echoed = 0;
    std::optional<Answer> text;
    for (const LineSegment& segment : search) {
        for (const LineSegment::Exchange& exchange : segment.exchanges) {
            answered += exchange.received.empty() ? 0 : 1;
            echoed += !exchange.received.empty() && IsEcho(exchange) ? 1 : 0;
        }
        const std::string received = segment.Received();
        constexpr std::size_t enough = 4;
        if (received.size() >= enough && segment.damaged == 0 && IsText(received)) {
            const Answer judged = JudgeText(received);
            text = text ? std::min(*text, judged) : judged;
        }
    }
    if (answered == 0) return Answer::Nothing;
    if (echoed * 10 >= answered * 8) return Answer::Echo;
    return text.value_or(Answer::Noise);
}

std::string ShownAnswer(const std::vector<LineSegment>& search) {
    std::string first;
    for (const LineSegment& segment : search) {
        const std::string received = segment.Received();
        if (segment.damaged == 0 && !received.empty() && IsText(received)) return Shown(received);
        if (first.empty()) first = received;
    }
    return Shown(first);
}

std::string Shown(std::string_view sBytes) {
    std::string shown;
    TraceRows rows(TraceRows::Form::Text, [&](const TraceRow& row) { shown += row.text; });
    rows.Add(0, TraceKind::Received, sBytes.substr(0, MostShown));
    rows.Flush();
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string ascii;
    for (const char byte : shown) {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 0x80)
            ascii += byte;
        else
            ascii += {'<', digits[value >> 4], digits[value & 15], '>'};
    }
    return ascii;
}

} // namespace qncomm
