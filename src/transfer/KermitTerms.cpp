#include "KermitTerms.h"

#include <algorithm>

namespace qncomm::transfer {

namespace {

constexpr unsigned CanLong = 2;
constexpr unsigned CanWindow = 4;
constexpr unsigned CanAttributes = 8;
constexpr unsigned CanResume = 16;
constexpr unsigned MoreCapabilities = 1;
// What a side says about itself; the first tells that the rest is meant.
constexpr unsigned SaysWhatItIs = 32;
constexpr unsigned Streams = 8;
constexpr unsigned Timeout = 10; // seconds that the other side is asked to wait before it repeats
constexpr unsigned ShortDefault = 80;
constexpr std::size_t LongFrame = 8; // mark, header with its check, end of line

// Places in the data of a packet that opens a session.
enum Field : std::size_t {
    MaxLength = 0,
    ControlPrefix = 5,
    BitPrefix = 6,
    Check = 7,
    RepeatPrefix = 8,
    Capabilities = 9,
};

// One side's words, taken apart; what is missing has its default.
struct Words {
    unsigned maxLength = ShortDefault;
    char controlPrefix = '#';
    char bitPrefix = 'N';
    char check = '1';
    char repeatPrefix = ' ';
    unsigned capabilities = 0;
    unsigned window = 1;
    unsigned longest = 0;
    bool streaming = false;
};

bool IsPrefix(char c) {
    return (c >= '!' && c <= '>') || (c >= '`' && c <= '~');
}

Words Parse(std::string_view data) {
    Words words;
    const auto at = [&](std::size_t i, char fallback) {
        return i < data.size() ? data[i] : fallback;
    };
    const unsigned length = kermit::FromChar(at(MaxLength, ' '));
    if (length >= 10 && length <= kermit::LongestShort) words.maxLength = length;
    if (IsPrefix(at(ControlPrefix, ' '))) words.controlPrefix = data[ControlPrefix];
    words.bitPrefix = at(BitPrefix, 'N');
    words.check = at(Check, '1');
    words.repeatPrefix = at(RepeatPrefix, ' ');
    std::size_t next = Capabilities;
    words.capabilities = kermit::FromChar(at(next, ' '));
    while (next < data.size() && (kermit::FromChar(data[next]) & MoreCapabilities) != 0) {
        ++next;
    }
    words.window = std::clamp(kermit::FromChar(at(next + 1, '!')), 1U, kermit::MostSlots);
    const unsigned high = kermit::FromChar(at(next + 2, ' '));
    const unsigned low = kermit::FromChar(at(next + 3, ' '));
    if (high < 95 && low < 95) words.longest = high * 95 + low;
    constexpr unsigned both = SaysWhatItIs | Streams; // behind four places about checkpoints
    const unsigned whatItIs = kermit::FromChar(at(next + 8, ' '));
    words.streaming = whatItIs < 95 && (whatItIs & both) == both;
    return words;
}

unsigned OwnCapabilities(const KermitOptions& options) {
    unsigned own = CanResume;
    if (options.packet > kermit::LongestShort) own |= CanLong;
    if (options.window > 1) own |= CanWindow;
    if (options.attributes) own |= CanAttributes;
    return own;
}

std::string Say(const KermitOptions& options, char bitPrefix, char check, char repeatPrefix,
                unsigned capabilities, unsigned window, bool bStreaming) {
    const std::size_t packet = std::clamp<std::size_t>(options.packet, 20, kermit::LongestLong);
    const auto shortest = static_cast<unsigned>(std::min(packet, kermit::LongestShort));
    const auto extended = static_cast<unsigned>(packet);
    std::string words = {kermit::ToChar(shortest),
                         kermit::ToChar(Timeout),
                         kermit::ToChar(0),     // no padding
                         kermit::Control('\0'), // of this
                         kermit::ToChar(static_cast<unsigned char>(kermit::EndOfLine)),
                         '#',
                         bitPrefix,
                         check,
                         repeatPrefix,
                         kermit::ToChar(capabilities),
                         kermit::ToChar(window),
                         kermit::ToChar(extended / 95),
                         kermit::ToChar(extended % 95)};
    if (!bStreaming) return words;
    words += "0___"; // no checkpoints
    words += kermit::ToChar(SaysWhatItIs | Streams);
    return words;
}

KermitTerms Common(const KermitOptions& options, const Words& words) {
    KermitTerms terms;
    const unsigned both = words.capabilities & OwnCapabilities(options);
    terms.controlPrefix = words.controlPrefix;
    terms.attributes = (both & CanAttributes) != 0;
    terms.resume = (both & CanResume) != 0;
    terms.longPackets = (both & CanLong) != 0;
    terms.longest = words.maxLength;
    if (terms.longPackets) {
        // One that can but does not say how long takes 500.
        terms.longest = words.longest != 0 ? words.longest : 500;
        terms.longest = std::max<std::size_t>(terms.longest, 20);
    }
    terms.longest = std::min(terms.longest, std::max<std::size_t>(options.packet, 20));
    if ((both & CanWindow) != 0) terms.window = std::min(words.window, options.window);
    terms.streaming = options.reliable && words.streaming;
    return terms;
}

} // namespace

std::size_t KermitTerms::DataRoom() const {
    // The field of a short packet counts sequence, type, data and check. How a long one is meant is
    // read in two ways; the whole packet from mark to end of line is counted here, which fits both.
    if (longest > kermit::LongestShort) return longest - LongFrame - check;
    return longest - 2 - check;
}

std::string ProposeKermitTerms(const KermitOptions& options) {
    return Say(options, options.sevenBits ? '&' : 'Y', static_cast<char>('0' + options.check),
               options.repeats ? '~' : ' ', OwnCapabilities(options),
               std::clamp(options.window, 1U, kermit::MostSlots), options.reliable);
}

KermitTerms AcceptKermitTerms(const KermitOptions& options, std::string_view proposal,
                              std::string& reply) {
    const Words words = Parse(proposal);
    KermitTerms terms = Common(options, words);
    char bitReply = 'N';
    if (IsPrefix(words.bitPrefix)) {
        terms.bitPrefix = words.bitPrefix;
        bitReply = 'Y';
    } else if (words.bitPrefix == 'Y' && options.sevenBits) {
        terms.bitPrefix = '&';
        bitReply = '&';
    }
    if (words.check >= '1' && words.check <= '3')
        terms.check = static_cast<unsigned>(words.check - '0');
    if (options.repeats && IsPrefix(words.repeatPrefix)) terms.repeatPrefix = words.repeatPrefix;
    reply = Say(options, bitReply, static_cast<char>('0' + terms.check),
                terms.repeatPrefix != 0 ? terms.repeatPrefix : ' ', OwnCapabilities(options),
                terms.window, terms.streaming);
    return terms;
}

KermitTerms ConcludeKermitTerms(const KermitOptions& options, std::string_view reply) {
    const Words words = Parse(reply);
    KermitTerms terms = Common(options, words);
    if (IsPrefix(words.bitPrefix)) {
        terms.bitPrefix = words.bitPrefix;
    } else if (words.bitPrefix == 'Y' && options.sevenBits) {
        terms.bitPrefix = '&';
    }
    if (words.check == static_cast<char>('0' + options.check)) terms.check = options.check;
    if (options.repeats && words.repeatPrefix == '~') terms.repeatPrefix = '~';
    return terms;
}

} // namespace qncomm::transfer
