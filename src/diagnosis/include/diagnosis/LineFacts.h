#pragma once

#include "link/Listening.h"
#include "platform/IoResult.h"
#include "serial/LineErrors.h"
#include "trace/TraceSink.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// What came back when a printer was searched for.
enum class Answer {
    NotAsked, ///< nothing was sent
    Nothing,  ///< no byte came back
    Printer,  ///< a printer, which then was identified
    Half,     ///< a printer's first answer, and then not what a printer says
    Echo,     ///< what was sent, byte for byte
    Taken,    ///< command lines are echoed and not carried out: a program takes them
    Text,     ///< a text that is no printer's answer: another device
    Noise,    ///< bytes that are no text at any rate and format
};

/// What was found on a line. Plain values: what judges them can be given any.
struct LineFacts {
    IoResult opening;        ///< whether the port opened, or why not
    std::string settings;    ///< it was listened at, such as "9600,N,8,2"
    std::optional<bool> dsr; ///< nothing where there are no modem lines
    LineErrors errors;       ///< while nobody spoke or a printer answered
    bool errorsTold = false; ///< the line tells of errors, and bytes came that could have had some
    LineVerdict heard;       ///< what came by itself
    std::string heardText;   ///< its beginning, control bytes by name
    std::string heardAt;     ///< the settings at which that came
    Answer answer = Answer::NotAsked; ///< what came back
    std::string answerText;           ///< its beginning, control bytes by name
    std::string found;                ///< the settings at which the printer answered
    std::int16_t channel = 0;         ///< the printer's channel
    std::string model;                ///< what the printer calls itself
    std::string firmware;             ///< its version
    /// Bytes of a load that broke off here, as the settings note it; 0 for none.
    std::uintmax_t load = 0;
    bool loadGivenUp = false; ///< the printer has waited for its rest, and has now given it up
    std::string failure;      ///< what the search or the first exchange raised
    std::string loss;         ///< how the open line was lost
};

/// What travelled while the port was open once.
struct LineSegment {
    /// Bytes that were sent in one go, and what came until the next ones.
    struct Exchange {
        std::string sent;     ///< empty for what came before anything was sent
        std::string received; ///< its beginning, where much came
    };

    std::string settings;            ///< of the line
    LineErrors errors;               ///< that were told of
    std::int32_t damaged = 0;        ///< how often frame or parity errors were
    std::vector<Exchange> exchanges; ///< in their order

    /// All that came.
    std::string Received() const;
    /// Whether anything was sent.
    bool Sent() const;
};

/// Keeps what travels on a line, opening by opening, and passes it on.
class LineRecord final : public TraceSink {
  public:
    /// Passes all on to next, which may be null and outlives this object.
    explicit LineRecord(TraceSink* next = nullptr) : mNext(next) {}

    void Record(std::int64_t lMs, TraceKind kind, std::string_view sBytes) override;

    /// What was recorded, an element for each opening.
    const std::vector<LineSegment>& Segments() const { return mSegments; }
    /// Whether the port has said that it has no modem lines.
    bool HasNoModemLines() const { return mNoModemLines; }

  private:
    void Note(std::string_view event);

    TraceSink* mNext;
    std::vector<LineSegment> mSegments;
    bool mNoModemLines = false;
};

/// What came back in a search that found nothing.
Answer Judge(const std::vector<LineSegment>& search);

/// The beginning of what came back in it, as Shown has it: of a text rather than of noise.
std::string ShownAnswer(const std::vector<LineSegment>& search);

/// The beginning of bytes of the line as a person reads them, such as "42<CR><LF>", in ASCII.
std::string Shown(std::string_view sBytes);

} // namespace qncomm
