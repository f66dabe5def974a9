#include "ControlParser.h"

#include "ParserTable.h"

#include <algorithm>
#include <cstring>

namespace qncomm::terminal {
namespace {

constexpr std::uint64_t EachByte = 0x0101010101010101U;
constexpr std::uint64_t HighBits = 0x80 * EachByte;

/// Whether any of the eight bytes is below 0x20 or is 0x7F.
bool AnyControl(std::uint64_t eight) {
    const std::uint64_t below = (eight - 0x20 * EachByte) & ~eight;
    const std::uint64_t delta = eight ^ (0x7F * EachByte);
    const std::uint64_t deleted = (delta - EachByte) & ~delta;
    return ((below | deleted) & HighBits) != 0;
}

bool IsControl(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return code < 0x20 || code == 0x7F;
}

/// How many characters from the start on are text.
std::size_t TextLength(std::string_view bytes) {
    std::size_t at = 0;
    for (; at + 8 <= bytes.size(); at += 8) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, bytes.data() + at, 8);
        if (AnyControl(eight)) break;
    }
    while (at < bytes.size() && !IsControl(bytes[at]))
        ++at;
    return at;
}

} // namespace

void ControlParser::Feed(std::string_view bytes, ControlEvents& events) {
    while (!bytes.empty()) {
        if (mState == static_cast<std::uint8_t>(ParserState::Ground)) {
            const std::size_t text = TextLength(bytes);
            if (text > 0) events.Print(bytes.substr(0, text));
            bytes.remove_prefix(text);
            if (bytes.empty()) return;
        }
        Step(bytes.front(), events);
        bytes.remove_prefix(1);
    }
}

void ControlParser::Step(char byte, ControlEvents& events) {
    const Transition transition = Transitions[mState][static_cast<unsigned char>(byte)];
    mState = static_cast<std::uint8_t>(transition.next);
    switch (transition.action) {
    case ParserAction::Ignore:
        break;
    case ParserAction::Print:
        events.Print({&byte, 1});
        break;
    case ParserAction::Execute:
        events.Execute(byte);
        break;
    case ParserAction::StartSequence:
        mSequence.mark = mSequence.intermediate = 0;
        mSequence.count = 0;
        mSequence.joined = 0;
        mValuesFull = false;
        break;
    case ParserAction::StartString:
        mStringBytes = 0;
        break;
    case ParserAction::StringByte:
        CountStringByte();
        break;
    case ParserAction::Mark:
        mSequence.mark = byte;
        break;
    case ParserAction::Collect:
        Collect(byte);
        break;
    case ParserAction::Parameter:
        TakeParameterByte(byte);
        break;
    case ParserAction::DispatchEscape:
        mSequence.final = byte;
        events.Escape(mSequence);
        break;
    case ParserAction::DispatchControl:
        mSequence.final = byte;
        events.Control(mSequence);
        break;
    }
}

void ControlParser::Collect(char byte) {
    mSequence.intermediate = mSequence.intermediate == 0 ? byte : ControlSequence::Several;
}

void ControlParser::TakeParameterByte(char byte) {
    if (mSequence.count == 0) {
        mSequence.count = 1;
        mSequence.values[0] = 0;
    }
    if (byte == ';' || byte == ':') {
        mValuesFull = mSequence.count == ControlSequence::MostSequenceValues;
        if (mValuesFull) return;
        if (byte == ':') mSequence.joined |= 1U << mSequence.count;
        mSequence.values[mSequence.count++] = 0;
        return;
    }
    if (mValuesFull) return;
    std::uint16_t& value = mSequence.values[mSequence.count - std::size_t{1}];
    const std::uint32_t longer = value * 10U + static_cast<std::uint32_t>(byte - '0');
    value =
        static_cast<std::uint16_t>(std::min<std::uint32_t>(longer, ControlSequence::LargestValue));
}

void ControlParser::CountStringByte() {
    if (++mStringBytes == LongestString) mState = static_cast<std::uint8_t>(ParserState::Ground);
}

} // namespace qncomm::terminal
