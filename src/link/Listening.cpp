// What a line says by itself: a table of kinds, each with what it is known by.

#include "link/Listening.h"

#include "common/Text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <vector>

namespace qncomm {
namespace {

using Bytes = std::string_view;

constexpr unsigned HighBit = 0x80;
constexpr std::size_t LongestSample = 40;

unsigned char Unsigned(char c) {
    return static_cast<unsigned char>(c);
}

bool IsText(char c) {
    constexpr Bytes controls = "\r\n\t\b\a\f\x01\x11\x13\x18\x1b";
    return (c >= ' ' && c <= '~') || controls.find(c) != Bytes::npos;
}

/// Whether at least that share of the bytes, in percent, is text.
bool MostlyText(Bytes bytes, std::size_t percent) {
    const auto count = static_cast<std::size_t>(std::count_if(bytes.begin(), bytes.end(), IsText));
    return !bytes.empty() && count * 100 >= bytes.size() * percent;
}

// -- The eighth bit

struct ParityRule {
    char letter;
    bool (*holds)(char c);
};

constexpr std::array ParityRules{
    ParityRule{'m', [](char c) { return (Unsigned(c) & HighBit) != 0; }},
    ParityRule{'e', [](char c) { return std::popcount(Unsigned(c)) % 2 == 0; }},
    ParityRule{'o', [](char c) { return std::popcount(Unsigned(c)) % 2 == 1; }},
};

/// The parity that the eighth bits of a text are; nothing when they are none. Few bytes agree by
/// chance.
std::optional<char> ParityOf(Bytes bytes) {
    constexpr std::size_t enough = 6;
    const bool high =
        std::any_of(bytes.begin(), bytes.end(), [](char c) { return Unsigned(c) >= HighBit; });
    if (!high || bytes.size() < enough || !MostlyText(Strip8thBit(bytes), 100)) return std::nullopt;
    for (const ParityRule& rule : ParityRules)
        if (std::all_of(bytes.begin(), bytes.end(), rule.holds)) return rule.letter;
    return std::nullopt;
}

// -- What was heard, made ready for the table

struct Heard {
    explicit Heard(const HeardLine& line)
        : raw(line),
          parity(ParityOf(line.bytes)),
          text(parity ? Strip8thBit(line.bytes) : line.bytes),
          lines(SplitNonEmpty(NormalizeLineEnds(text), CrLf)) {}

    bool Quiet() const { return raw.silentMs >= LineQuietMs; }
    bool EndsInLine() const { return text.ends_with('\n') || text.ends_with('\r'); }
    Bytes LastLine() const { return lines.empty() ? Bytes() : Bytes(lines.back()); }
    /// The last line that has come to its end, of several.
    Bytes LastWhole() const {
        const bool half = lines.size() > 1 && !EndsInLine() && !Quiet();
        return half ? Bytes(lines[lines.size() - 2]) : LastLine();
    }

    const HeardLine& raw;
    std::optional<char> parity;
    std::string text;               ///< without the parity bits
    std::vector<std::string> lines; ///< the ones that are not empty
};

bool IsSilence(const Heard& heard) {
    return heard.raw.bytes.empty() && heard.raw.lineErrors == 0;
}

/// The header by which a ZModem receiver invites, or what has come of it: sixteen hex digits after
/// this.
bool IsZModem(const Heard& heard) {
    return heard.text.find("**\x18"
                           "B01")
           != std::string::npos;
}

/// A packet of no data that asks for one: mark, length 3, number, "N", and the check over the
/// three.
bool IsKermit(const Heard& heard) {
    constexpr std::size_t length = 5;
    for (std::size_t at = heard.text.find('\x01'); at != std::string::npos;
         at = heard.text.find('\x01', at + 1)) {
        const Bytes packet = Bytes(heard.text).substr(at, length);
        if (packet.size() < length || packet[1] != '#' || packet[3] != 'N') continue;
        const unsigned sum = Unsigned(packet[1]) + Unsigned(packet[2]) + Unsigned(packet[3]);
        if (Unsigned(packet[4]) == ((sum + ((sum & 0xC0U) >> 6U)) & 0x3FU) + ' ') return true;
    }
    return false;
}

/// Letters, digits and signs alone: what an echo keeps whatever becomes of line ends.
std::string Bare(Bytes text) {
    std::string bare = Strip8thBit(text);
    std::erase_if(bare, [](char c) { return c <= ' ' || c > '~'; });
    return bare;
}

bool IsEcho(const Heard& heard) {
    const std::string came = Bare(heard.text);
    const std::string sent = Bare(heard.raw.sent);
    return !came.empty() && came.size() * 2 >= sent.size() && sent.find(came) != std::string::npos;
}

/// Whether words are among it: most of what people write is letters, digits and blanks.
bool HoldsWords(Bytes text) {
    const auto isOfWord = [](char c) {
        const char lower = static_cast<char>(c | ' ');
        return c == ' ' || (c >= '0' && c <= '9') || (lower >= 'a' && lower <= 'z');
    };
    const auto count = std::count_if(text.begin(), text.end(), isOfWord);
    return static_cast<std::size_t>(count) * 2 >= text.size();
}

bool IsNoise(const Heard& heard) {
    constexpr std::size_t leastText = 66; // Windows-1252 has letters among the other bytes
    if (!MostlyText(heard.text, leastText)) return true;
    // Seven bits of noise look like signs; a pseudo-terminal counts no errors.
    return !HoldsWords(heard.text) && (heard.raw.lineErrors > 0 || !MostlyText(heard.text, 100));
}

bool IsPrompt(const Heard& heard) {
    return heard.Quiet() && heard.LastLine() == "Ok" && heard.EndsInLine();
}

bool IsQuestion(const Heard& heard) {
    return heard.Quiet() && heard.text.ends_with("? ");
}

/// A greeting names the model behind the firmware.
bool IsBoot(const Heard& heard) {
    const auto isModel = [](Bytes line) {
        return line.size() == 3 && line.starts_with("R7") && line[2] >= 'A' && line[2] <= 'Z';
    };
    const auto found = std::find_if(heard.lines.begin(), heard.lines.end(), isModel);
    return found != heard.lines.end() && found != heard.lines.begin();
}

struct Kind {
    LineTalk talk;
    std::string_view name;
    bool (*is)(const Heard&);
    std::string_view sentence;
};

/// The first that holds is it.
constexpr std::array Kinds{
    Kind{LineTalk::Silence, "silence", IsSilence, "the line is silent"},
    Kind{LineTalk::ZModemReceiver, "zmodem", IsZModem, "a receiver waits for a file by ZModem"},
    Kind{LineTalk::KermitReceiver, "kermit", IsKermit, "a receiver waits for a file by Kermit"},
    Kind{LineTalk::Noise, "noise", IsNoise,
         "what comes is no text: rate or format are other ones, or the line is bad"},
    Kind{LineTalk::Echo, "echo", IsEcho,
         "the line returns what is sent to it, and says nothing else"},
    Kind{LineTalk::Prompt, "prompt", IsPrompt, "the printer is at its prompt"},
    Kind{LineTalk::Question, "question", IsQuestion, "a program is running; it asks and waits: "},
    Kind{LineTalk::Boot, "boot", IsBoot, "the printer is starting"},
    Kind{LineTalk::Text, "text", [](const Heard&) { return true; },
         "a program is running; it says: "},
};

const Kind& KindOf(LineTalk talk) {
    return *std::find_if(Kinds.begin(), Kinds.end(),
                         [talk](const Kind& kind) { return kind.talk == talk; });
}

FormatFit FitOf(const Heard& heard, LineTalk talk) {
    if (talk == LineTalk::Silence) return FormatFit::Unknown;
    if (talk == LineTalk::Noise || heard.raw.lineErrors > 0) return FormatFit::Wrong;
    return heard.parity ? FormatFit::Parity : FormatFit::Fits;
}

std::string Printable(Bytes text) {
    std::string shown(text.substr(0, LongestSample));
    std::erase_if(shown, [](char c) { return Unsigned(c) < ' '; });
    return shown;
}

} // namespace

LineVerdict Classify(const HeardLine& line) {
    const Heard heard(line);
    const Kind& kind = *std::find_if(Kinds.begin(), Kinds.end(),
                                     [&](const Kind& known) { return known.is(heard); });
    const bool quotes = kind.talk >= LineTalk::Echo;
    return {kind.talk, FitOf(heard, kind.talk), heard.parity.value_or(0),
            quotes ? Printable(heard.LastWhole()) : std::string()};
}

std::string_view NameOf(LineTalk talk) {
    return KindOf(talk).name;
}

std::string SentenceFor(const LineVerdict& verdict) {
    std::string sentence(KindOf(verdict.talk).sentence);
    if (sentence.ends_with(": ")) sentence += Trim(verdict.sample);
    return sentence;
}

} // namespace qncomm
