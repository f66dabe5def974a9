#include "TtyLine.h"

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

struct BaudCode {
    int baud;
    speed_t code;
};

constexpr std::array BaudCodes{
    BaudCode{300, B300},       BaudCode{600, B600},     BaudCode{1200, B1200},
    BaudCode{2400, B2400},     BaudCode{4800, B4800},   BaudCode{9600, B9600},
    BaudCode{19200, B19200},   BaudCode{38400, B38400}, BaudCode{57600, B57600},
    BaudCode{115200, B115200},
};
static_assert(BaudCodes.size() == BaudRates.size());

struct ParityBits {
    char letter;
    tcflag_t bits;
};

constexpr std::array Parities{
    ParityBits{'n', 0},
    ParityBits{'e', PARENB},
    ParityBits{'o', PARENB | PARODD},
    ParityBits{'m', PARENB | CMSPAR | PARODD},
    ParityBits{'s', PARENB | CMSPAR},
};

struct NamedBits {
    tcflag_t bits;
    const char* name;
};

constexpr std::array Parts{
    NamedBits{CSIZE, "the number of data bits"},
    NamedBits{CSTOPB, "the number of stop bits"},
    NamedBits{PARENB | PARODD | CMSPAR, "the parity"},
    NamedBits{CRTSCTS, "RTS/CTS handshaking"},
};

} // namespace

termios AttributesFor(const LineSettings& settings) {
    termios line{};
    line.c_iflag = IGNBRK;
    if (settings.xonXoff) line.c_iflag |= IXON | IXOFF;
    line.c_cflag = CREAD | CLOCAL | HUPCL;
    line.c_cflag |= settings.dataBits == 7 ? CS7 : CS8;
    if (settings.stopBits == 2) line.c_cflag |= CSTOPB;
    if (settings.rtsCts) line.c_cflag |= CRTSCTS;
    const auto* const parity =
        std::find_if(Parities.begin(), Parities.end(),
                     [&](const ParityBits& entry) { return entry.letter == settings.parity; });
    if (parity != Parities.end()) line.c_cflag |= parity->bits;
    const auto* const rate =
        std::find_if(BaudCodes.begin(), BaudCodes.end(),
                     [&](const BaudCode& entry) { return entry.baud == settings.baud; });
    if (rate != BaudCodes.end()) {
        ::cfsetispeed(&line, rate->code);
        ::cfsetospeed(&line, rate->code);
    }
    line.c_cc[VMIN] = 1; // a read without bytes says "not now" and not "end of file"
    line.c_cc[VTIME] = 0;
    line.c_cc[VSTART] = 0x11;
    line.c_cc[VSTOP] = 0x13;
    return line;
}

std::string RefusedPart(const termios& wanted, const termios& got) {
    if (::cfgetospeed(&wanted) != ::cfgetospeed(&got)) return "the baud rate";
    for (const NamedBits& part : Parts)
        if ((wanted.c_cflag & part.bits) != (got.c_cflag & part.bits)) return part.name;
    return {};
}

} // namespace qncomm
