#include "endpoints/ComPortServer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace qnsim {
namespace {

// Telnet's commands.
constexpr unsigned char CmdEnd = 240;
constexpr unsigned char CmdBreak = 243;
constexpr unsigned char CmdBegin = 250;
constexpr unsigned char CmdWill = 251;
constexpr unsigned char CmdWont = 252;
constexpr unsigned char CmdDo = 253;
constexpr unsigned char CmdDont = 254;
constexpr unsigned char CmdEscape = 255;

// Those of its options that a serial port uses.
constexpr unsigned char OptBinary = 0;
constexpr unsigned char OptEcho = 1;
constexpr unsigned char OptNoGoAhead = 3;
constexpr unsigned char OptComPort = 44;

struct KnownOption {
    unsigned char option;
    bool ours;  // we may do it: the printer itself echoes
    bool hosts; // the host may
};
constexpr std::array<KnownOption, 4> KnownOptions{{{OptBinary, true, true},
                                                   {OptEcho, true, false},
                                                   {OptNoGoAhead, true, true},
                                                   {OptComPort, true, true}}};

// Values of the remote port's requests.
constexpr unsigned char AnswerOffset = 100;
constexpr unsigned char NotifyLineState = 106;
constexpr unsigned char ModemStateNotice = 107;
constexpr unsigned char RequestControl = 5;
constexpr std::array<char, 5> Parities{'n', 'o', 'e', 'm', 's'}; // counted from 1
constexpr std::array<int, 10> Bauds{300, 600, 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200};
constexpr unsigned char FrameError = 0x08;
constexpr unsigned char ParityError = 0x04;
constexpr unsigned char ModemDsr = 0x20;
constexpr unsigned char ModemCts = 0x10;
constexpr unsigned char ChangedDsr = 0x02;
constexpr unsigned char ChangedCts = 0x01;

constexpr std::size_t LongestParameters = 512;

unsigned char First(std::string_view value) {
    return value.empty() ? 0 : static_cast<unsigned char>(value.front());
}

std::string BigEndian(std::uint32_t number) {
    std::string bytes(4, '\0');
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte, number >>= 8U)
        *byte = static_cast<char>(number & 0xFFU);
    return bytes;
}

} // namespace

struct ComPortServer::Command {
    unsigned char number;
    void (ComPortServer::*carryOut)(std::string_view value);
};

// -- From the connection

std::vector<HostAction> ComPortServer::Receive(std::string_view bytes) {
    for (const char byte : bytes)
        Take(static_cast<unsigned char>(byte));
    return std::exchange(mActions, {});
}

void ComPortServer::Take(unsigned char byte) {
    switch (mState) {
    case State::Data:
        if (byte == CmdEscape)
            mState = State::Command;
        else
            TakeData(byte);
        return;
    case State::Command:
        TakeCommand(byte);
        return;
    case State::Option:
        mState = State::Data;
        TakeOption(byte);
        return;
    case State::Parameters:
        if (byte == CmdEscape)
            mState = State::ParametersCommand;
        else
            TakeParameter(byte);
        return;
    case State::ParametersCommand:
        mState = State::Parameters;
        if (byte == CmdEscape) {
            TakeParameter(byte);
        } else if (byte == CmdEnd) {
            EndParameters();
        } else { // only these two may stand here: the parameters are lost
            TakeCommand(byte);
        }
        return;
    }
}

void ComPortServer::TakeData(unsigned char byte) {
    // A line of text ends in CR LF or, for the bare CR, in CR NUL.
    const bool filler = mAfterReturn && byte == 0 && !mBinaryFromHost;
    mAfterReturn = byte == '\r';
    if (filler) return;
    if (mActions.empty() || mActions.back().kind != HostAction::Kind::Bytes)
        Happened(HostAction::Kind::Bytes);
    mActions.back().text += static_cast<char>(byte);
}

void ComPortServer::TakeCommand(unsigned char byte) {
    mState = State::Data;
    switch (byte) {
    case CmdEscape:
        TakeData(byte);
        return;
    case CmdWill:
    case CmdWont:
    case CmdDo:
    case CmdDont:
        mVerb = byte;
        mState = State::Option;
        return;
    case CmdBegin:
        mParameters.clear();
        mState = State::Parameters;
        return;
    case CmdBreak:
        Happened(HostAction::Kind::Break);
        return;
    default:
        return;
    }
}

void ComPortServer::TakeOption(unsigned char option) {
    const bool ours = mVerb == CmdDo || mVerb == CmdDont;
    const bool on = mVerb == CmdDo || mVerb == CmdWill;
    const unsigned char yes = ours ? CmdWill : CmdDo;
    const unsigned char no = ours ? CmdWont : CmdDont;
    const auto* known =
        std::find_if(KnownOptions.begin(), KnownOptions.end(),
                     [option](const KnownOption& entry) { return entry.option == option; });
    const bool may = known != KnownOptions.end() && (ours ? known->ours : known->hosts);
    if (!may) {
        if (on)
            mOutput +=
                {static_cast<char>(CmdEscape), static_cast<char>(no), static_cast<char>(option)};
        return;
    }
    // An option that is already in that state is not confirmed: two sides could answer each other
    // for ever.
    const unsigned bit = 1U << static_cast<unsigned>(known - KnownOptions.begin());
    unsigned& options = mOptionsOn.at(ours ? 0 : 1);
    if (((options & bit) != 0) == on) return;
    options ^= bit;
    mOutput +=
        {static_cast<char>(CmdEscape), static_cast<char>(on ? yes : no), static_cast<char>(option)};
    if (option == OptBinary) (ours ? mBinaryToHost : mBinaryFromHost) = on;
    if (option != OptComPort || !on || std::exchange(mRemoteControl, true)) return;
    NotifyModemState(0);
}

void ComPortServer::TakeParameter(unsigned char byte) {
    if (mParameters.size() <= LongestParameters) mParameters += static_cast<char>(byte);
}

void ComPortServer::EndParameters() {
    static constexpr std::array<Command, 11> commands{{{0, &ComPortServer::Sign},
                                                       {1, &ComPortServer::SetBaud},
                                                       {2, &ComPortServer::SetDataBits},
                                                       {3, &ComPortServer::SetParity},
                                                       {4, &ComPortServer::SetStopBits},
                                                       {5, &ComPortServer::SetControl},
                                                       {8, &ComPortServer::Suspend},
                                                       {9, &ComPortServer::Resume},
                                                       {10, &ComPortServer::SetLineMask},
                                                       {11, &ComPortServer::SetModemMask},
                                                       {12, &ComPortServer::Purge}}};
    mState = State::Data;
    const std::string parameters = std::exchange(mParameters, {});
    if (parameters.size() < 2 || parameters.size() > LongestParameters) return;
    if (First(parameters) != OptComPort) return;
    const std::string_view value = std::string_view(parameters).substr(2);
    const auto number = static_cast<unsigned char>(parameters[1]);
    for (const Command& command : commands)
        if (command.number == number) (this->*command.carryOut)(value);
}

// -- Requests

void ComPortServer::SetBaud(std::string_view value) {
    std::uint32_t wanted = 0;
    for (const char byte : value.substr(0, 4))
        wanted = wanted << 8U | static_cast<unsigned char>(byte);
    const auto* found = std::find_if(Bauds.begin(), Bauds.end(), [wanted](int baud) {
        return static_cast<std::uint32_t>(baud) == wanted;
    });
    if (value.size() == 4 && found != Bauds.end()) {
        mFormat.baud = *found;
        Happened(HostAction::Kind::Format);
    }
    Answer(1, BigEndian(static_cast<std::uint32_t>(*mFormat.baud)));
}

void ComPortServer::SetDataBits(std::string_view value) {
    const unsigned char bits = First(value);
    if (bits == 7 || bits == 8) {
        mFormat.dataBits = bits;
        Happened(HostAction::Kind::Format);
    }
    Answer(2, static_cast<unsigned char>(*mFormat.dataBits));
}

void ComPortServer::SetParity(std::string_view value) {
    const unsigned char code = First(value);
    if (code >= 1 && code <= Parities.size()) {
        mFormat.parity = Parities.at(code - 1U);
        Happened(HostAction::Kind::Format);
    }
    const auto* now = std::find(Parities.begin(), Parities.end(), *mFormat.parity);
    Answer(3, static_cast<unsigned char>(now - Parities.begin() + 1));
}

void ComPortServer::SetStopBits(std::string_view value) {
    const unsigned char bits = First(value);
    if (bits == 1 || bits == 2) {
        mFormat.stopBits = bits;
        Happened(HostAction::Kind::Format);
    }
    Answer(4, static_cast<unsigned char>(*mFormat.stopBits));
}

void ComPortServer::SetControl(std::string_view value) {
    // 0 to 3 flow control of both directions, 4 to 6 break, 7 to 9 DTR, 10 to 12 RTS, 13 to 16 flow
    // control of what comes in. 17 to 19 would let other modem lines control the flow.
    const unsigned char code = First(value);
    if (code <= 3 || code >= 13) {
        SetFlow(code);
    } else if (code <= 6) {
        SetBreak(code);
    } else if (code <= 9) {
        SetLine(code, 8, mDtr);
    } else {
        SetLine(code, 11, mRts);
    }
}

void ComPortServer::SetFlow(unsigned char value) {
    constexpr unsigned char both = 3;
    constexpr unsigned char inQuery = 13;
    constexpr unsigned char inLast = 16;
    const bool incoming = value >= inQuery && value <= inLast;
    if (value >= 1 && value <= both) {
        mFlow = value;
        mFlowIn = static_cast<unsigned char>(inQuery + value);
    } else if (incoming && value != inQuery) {
        mFlowIn = value;
    }
    Answer(RequestControl, incoming ? mFlowIn : mFlow);
}

void ComPortServer::SetBreak(unsigned char value) {
    constexpr unsigned char on = 5;
    constexpr unsigned char off = 6;
    if (value == on && !mBreak) Happened(HostAction::Kind::Break);
    if (value == on || value == off) mBreak = value == on;
    Answer(RequestControl, mBreak ? on : off);
}

void ComPortServer::SetLine(unsigned char value, unsigned char on, bool& line) {
    const auto off = static_cast<unsigned char>(on + 1);
    if (value == on || value == off) {
        line = value == on;
        Happened(HostAction::Kind::Lines);
    }
    Answer(RequestControl, line ? on : off);
}

void ComPortServer::Sign(std::string_view value) {
    if (value.empty())
        Answer(0, "qnsim virtual printer"); // with a value, the host tells its own name
}

void ComPortServer::SetLineMask(std::string_view value) {
    mLineMask = First(value);
    Answer(10, mLineMask);
}

void ComPortServer::SetModemMask(std::string_view value) {
    mModemMask = First(value);
    Answer(11, mModemMask);
    NotifyModemState(0);
}

void ComPortServer::Suspend(std::string_view /*value*/) {
    mSuspended = true;
}

void ComPortServer::Resume(std::string_view /*value*/) {
    mSuspended = false;
}

void ComPortServer::Purge(std::string_view value) {
    const unsigned char which = First(value);
    if ((which & 2U) != 0) Happened(HostAction::Kind::DropSent);
    if ((which & 1U) != 0) Happened(HostAction::Kind::DropReceived);
    Answer(12, which);
}

void ComPortServer::Answer(unsigned char command, std::string_view value) {
    mOutput += {static_cast<char>(CmdEscape), static_cast<char>(CmdBegin),
                static_cast<char>(OptComPort), static_cast<char>(command + AnswerOffset)};
    AppendEscaped(value);
    mOutput += {static_cast<char>(CmdEscape), static_cast<char>(CmdEnd)};
}

void ComPortServer::Answer(unsigned char command, unsigned char value) {
    const char byte = static_cast<char>(value);
    Answer(command, std::string_view(&byte, 1));
}

// -- To the host

void ComPortServer::ShowLines(bool dsr, bool cts) {
    const unsigned changed = (dsr != mDsr ? ChangedDsr : 0U) | (cts != mCts ? ChangedCts : 0U);
    mDsr = dsr;
    mCts = cts;
    if ((changed & mModemMask) != 0 && mRemoteControl)
        NotifyModemState(static_cast<unsigned char>(changed));
}

void ComPortServer::ShowErrors(const HostErrors& errors) {
    const unsigned state = (errors.frame ? FrameError : 0U) | (errors.parity ? ParityError : 0U);
    const auto told = static_cast<unsigned char>(state & mLineMask);
    if (told != 0 && mRemoteControl) Answer(NotifyLineState - AnswerOffset, told);
}

void ComPortServer::NotifyModemState(unsigned char changed) {
    const unsigned state = (mDsr ? ModemDsr : 0U) | (mCts ? ModemCts : 0U) | changed;
    Answer(ModemStateNotice - AnswerOffset, static_cast<unsigned char>(state & mModemMask));
}

void ComPortServer::Send(std::string_view bytes) {
    if (mBinaryToHost) {
        AppendEscaped(bytes);
        return;
    }
    for (const char byte : bytes) { // as lines of text: a bare CR is followed by NUL
        if (mSentReturn && byte != '\n') mOutput += '\0';
        mSentReturn = byte == '\r';
        AppendEscaped({&byte, 1});
    }
}

void ComPortServer::AppendEscaped(std::string_view bytes) {
    for (const char byte : bytes) {
        mOutput += byte;
        if (static_cast<unsigned char>(byte) == CmdEscape) mOutput += byte;
    }
}

void ComPortServer::Happened(HostAction::Kind kind) {
    mActions.push_back({kind, {}, mFormat, mDtr, mRts});
}

} // namespace qnsim
