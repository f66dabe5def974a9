#include "ComPortCodes.h"

#include <algorithm>
#include <array>

namespace qncomm::comport {
namespace {

struct ParityCode {
    char letter;
    const char* name;
};

/// In the order of their codes, which count from 1.
constexpr std::array Parities{ParityCode{'n', "no parity"}, ParityCode{'o', "odd parity"},
                              ParityCode{'e', "even parity"}, ParityCode{'m', "mark parity"},
                              ParityCode{'s', "space parity"}};

/// The names of the control values, and which of them exclude each other.
struct ControlCode {
    int group;
    const char* name;
};

constexpr std::array Controls{ControlCode{0, "flow control"}, ControlCode{0, "no flow control"},
                              ControlCode{0, "Xon/Xoff"},     ControlCode{0, "RTS/CTS"},
                              ControlCode{1, "break"},        ControlCode{1, "break on"},
                              ControlCode{1, "break off"},    ControlCode{2, "DTR"},
                              ControlCode{2, "DTR on"},       ControlCode{2, "DTR off"},
                              ControlCode{3, "RTS"},          ControlCode{3, "RTS on"},
                              ControlCode{3, "RTS off"}};

constexpr char FlowNone = 1;
constexpr char FlowXonXoff = 2;
constexpr char FlowRtsCts = 3;

std::size_t CodeOf(const Request& request) {
    return request.value.empty() ? 0 : static_cast<unsigned char>(request.value.back());
}

std::string BaudBytes(int baud) {
    const auto value = static_cast<std::uint32_t>(baud);
    std::string bytes;
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        bytes += static_cast<char>(value >> shift & 0xFFU);
    return bytes;
}

std::uint32_t BaudOf(std::string_view bytes) {
    std::uint32_t baud = 0;
    for (const char byte : bytes)
        baud = baud << 8U | static_cast<unsigned char>(byte);
    return baud;
}

char ParityValue(char letter) {
    const auto* const found =
        std::find_if(Parities.begin(), Parities.end(),
                     [letter](const ParityCode& parity) { return parity.letter == letter; });
    return static_cast<char>(found - Parities.begin() + 1);
}

char FlowValue(const LineSettings& settings) {
    if (settings.rtsCts) return FlowRtsCts;
    return settings.xonXoff ? FlowXonXoff : FlowNone;
}

std::string StopText(std::size_t code) {
    constexpr std::array names{"unknown stop bits", "1 stop bit", "2 stop bits", "1.5 stop bits"};
    return names[code < names.size() ? code : 0];
}

} // namespace

std::vector<Request> RequestsFor(const LineSettings& settings) {
    return {{SetBaudrate, BaudBytes(settings.baud)},
            {SetDatasize, {static_cast<char>(settings.dataBits)}},
            {SetParity, {ParityValue(settings.parity)}},
            {SetStopsize, {static_cast<char>(settings.stopBits)}},
            {SetControl, {FlowValue(settings)}}};
}

bool AnswersTo(const Request& request, const Request& answer) {
    if (request.command != answer.command) return false;
    if (request.command == PurgeData) return request.value == answer.value;
    if (request.command != SetControl) return true;
    const std::size_t asked = CodeOf(request);
    const std::size_t told = CodeOf(answer);
    return asked < Controls.size() && told < Controls.size()
           && Controls[asked].group == Controls[told].group;
}

std::string TextOf(const Request& request) {
    const std::size_t code = CodeOf(request);
    switch (request.command) {
    case SetBaudrate:
        return std::to_string(BaudOf(request.value)) + " baud";
    case SetDatasize:
        return std::to_string(code) + " data bits";
    case SetParity:
        return code >= 1 && code <= Parities.size() ? Parities[code - 1].name : "unknown parity";
    case SetStopsize:
        return StopText(code);
    case SetControl:
        return code < Controls.size() ? Controls[code].name : "unknown control";
    case PurgeData:
        return "discarding of data";
    default:
        return "modem state";
    }
}

} // namespace qncomm::comport
