#pragma once

// The server's side of a remote serial port (RFC 2217).

#include "endpoints/HostAction.h"
#include "simulator/VirtualPrinter.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace qnsim {

/// What one connection of a host says to a remote serial port and hears from it. It does no input
/// or output: what the connection brought goes in, what the host did comes out in its order, and
/// what to send back waits in Output. Every request is answered, with the value that is in force
/// when it asks for one that the port does not have.
class ComPortServer {
  public:
    /// Takes bytes from the connection, in whatever pieces, and returns what the host did by them,
    /// in its order. Their answers are in Output already, so the caller carries out all of it
    /// before the next Send.
    std::vector<HostAction> Receive(std::string_view bytes);

    /// The settings of the port as the host has them now.
    const LineFormat& Format() const { return mFormat; }

    /// Bytes from the line, for the host.
    void Send(std::string_view bytes);
    /// The modem lines as the printer holds them; the host hears of a change that it asked to hear
    /// of.
    void ShowLines(bool dsr, bool cts);
    /// What is wrong with the bytes that are sent next; told to a host that asked to hear of it.
    void ShowErrors(const HostErrors& errors);
    /// The host asked for a pause.
    bool Suspended() const { return mSuspended; }

    /// What is to be sent to the host; the caller erases what it has sent.
    std::string& Output() { return mOutput; }
    /// The same, to look at.
    const std::string& Output() const { return mOutput; }

  private:
    enum class State { Data, Command, Option, Parameters, ParametersCommand };
    struct Command;

    void Take(unsigned char byte);
    void TakeData(unsigned char byte);
    void TakeCommand(unsigned char byte);
    void TakeOption(unsigned char option);
    void TakeParameter(unsigned char byte);
    void EndParameters();

    void SetBaud(std::string_view value);
    void SetDataBits(std::string_view value);
    void SetParity(std::string_view value);
    void SetStopBits(std::string_view value);
    void SetControl(std::string_view value);
    void SetFlow(unsigned char value);
    void SetLine(unsigned char value, unsigned char on, bool& line);
    void SetBreak(unsigned char value);
    void Sign(std::string_view value);
    void SetLineMask(std::string_view value);
    void SetModemMask(std::string_view value);
    void Suspend(std::string_view value);
    void Resume(std::string_view value);
    void Purge(std::string_view value);

    void Answer(unsigned char command, std::string_view value);
    void Answer(unsigned char command, unsigned char value);
    void NotifyModemState(unsigned char changed);
    void Happened(HostAction::Kind kind);
    void AppendEscaped(std::string_view bytes);

    State mState = State::Data;
    unsigned char mVerb = 0;
    std::string mParameters;
    bool mAfterReturn = false;    ///< the last byte from the host was a CR
    bool mSentReturn = false;     ///< the last byte to the host was one
    bool mBinaryFromHost = false; ///< both directions start as lines of text
    bool mBinaryToHost = false;
    bool mRemoteControl = false;          ///< the host speaks of the port's settings
    std::array<unsigned, 2> mOptionsOn{}; ///< ours and the host's: a bit for each known option

    LineFormat mFormat{9600, 8, 1, 'n'};
    unsigned char mFlow = 1;
    unsigned char mFlowIn = 14;
    bool mDtr = true;
    bool mRts = true;
    bool mBreak = false;
    bool mDsr = true;
    bool mCts = true;
    unsigned char mModemMask = 0xFF;
    unsigned char mLineMask = 0;
    bool mSuspended = false;

    std::vector<HostAction> mActions;
    std::string mOutput;
};

} // namespace qnsim
