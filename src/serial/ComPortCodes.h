#pragma once

#include "serial/LineSettings.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What a client asks of a remote serial port, as the bytes of RFC 2217.
namespace qncomm::comport {

inline constexpr char SetBaudrate = 1;
inline constexpr char SetDatasize = 2;
inline constexpr char SetParity = 3;
inline constexpr char SetStopsize = 4;
inline constexpr char SetControl = 5;
inline constexpr char NotifyLineState = 6;
inline constexpr char NotifyModemState = 7;
inline constexpr char FlowSuspend = 8;
inline constexpr char FlowResume = 9;
inline constexpr char SetLineStateMask = 10;
inline constexpr char SetModemStateMask = 11;
inline constexpr char PurgeData = 12;
inline constexpr char ServerOffset = 100; ///< what the server adds to a command that it answers

inline constexpr char ControlBreakOn = 5; ///< values of SetControl
inline constexpr char ControlBreakOff = 6;
inline constexpr char ControlDtrOn = 8;
inline constexpr char ControlDtrOff = 9;
inline constexpr char ControlRtsOn = 11;
inline constexpr char ControlRtsOff = 12;

inline constexpr char PurgeReceived = 1; ///< what the device has sent and the client has not got
inline constexpr char PurgeUnsent = 2;   ///< what the client has sent and the device has not got
inline constexpr char PurgeBoth = 3;

inline constexpr unsigned LineOverrun = 0x02; ///< bits of the line state
inline constexpr unsigned LineParity = 0x04;
inline constexpr unsigned LineFrame = 0x08;
inline constexpr char LineMask = LineOverrun | LineParity | LineFrame;

inline constexpr unsigned ModemDsr = 0x20; ///< bits of the modem state
inline constexpr char ModemMask = 0x33;    ///< DSR and CTS, and that they changed

/// A command and its value.
struct Request {
    char command = 0;
    std::string value;

    bool operator==(const Request&) const = default;
};

/// What puts the settings on the remote line, in the order in which to ask. There is one word for
/// flow control: with both kinds wanted it is RTS/CTS, which takes no bytes out of the data.
std::vector<Request> RequestsFor(const LineSettings& settings);

/// Whether the second is an answer to the first: the same command and, where a command rules
/// several things, the same thing.
bool AnswersTo(const Request& request, const Request& answer);

/// A request or an answer in words: "57600 baud", "mark parity".
std::string TextOf(const Request& request);

} // namespace qncomm::comport
