#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm {

/// What a serial line says by itself. From Echo on it is text that can be shown.
enum class LineTalk : std::int16_t {
    Silence,        ///< nothing
    Noise,          ///< bytes that are no text: another rate or format, or a bad line
    ZModemReceiver, ///< a receiver that waits for a file by ZModem
    KermitReceiver, ///< a receiver that waits for a file by Kermit
    Echo,           ///< what was sent, and nothing else
    Prompt,         ///< a printer that waits for a command line
    Question,       ///< a program that asks, and waits for its input
    Boot,           ///< a printer that is starting
    Text,           ///< a program that runs
};

/// Whether the settings at which a line was heard are those of its sender.
enum class FormatFit : std::int16_t {
    Unknown, ///< nothing was heard, or too little
    Fits,    ///< what came reads as text and no byte was damaged
    Parity,  ///< text of 7 data bits came, with a parity bit that was read as the eighth
    Wrong,   ///< the rate, the parity or the number of bits is another one
};

/// What was heard on a line at one set of line settings.
struct HeardLine {
    std::string bytes;           ///< as they came
    std::int32_t lineErrors = 0; ///< frame and parity errors that the device has told
    std::int32_t silentMs = 0;   ///< how long nothing had come at the end of the listening
    std::string sent = {};       ///< what was sent meanwhile
};

/// What a line is found to say.
struct LineVerdict {
    LineTalk talk = LineTalk::Silence;  ///< which of the kinds
    FormatFit fit = FormatFit::Unknown; ///< what the settings at which it was heard are worth
    char parity = 0;                    ///< 'e', 'o' or 'm' where fit is Parity; else 0
    std::string sample = {};            ///< the last line of a text, in the line's bytes
    /// The same in all four.
    bool operator==(const LineVerdict&) const = default;
};

/// Says what a line says, from nothing but what was heard. A prompt and a question are known by the
/// silence behind them, so whoever asks listens until LineQuietMs have passed without a byte, or
/// for as long as he likes to a line that does not stop.
LineVerdict Classify(const HeardLine& heard);

/// Silence, in ms, that ends what a line says: longer than the 16 ms for which an adapter holds
/// bytes back, and than a byte takes at 300 bits per second.
inline constexpr std::int32_t LineQuietMs = 50;

/// One word for a kind, for scripts: "silence", "noise", "zmodem", "kermit", "echo", "prompt",
/// "question", "boot" or "text".
std::string_view NameOf(LineTalk talk);

/// What a line says as a sentence for a person, without the full stop, such as
/// "a program is running; it says: 42". A sample is cut to 40 bytes.
std::string SentenceFor(const LineVerdict& verdict);

} // namespace qncomm
