#pragma once

#include "ComPortCodes.h"
#include "TelnetDecoder.h"
#include "platform/IoResult.h"
#include "serial/LineErrors.h"
#include "serial/LineSettings.h"

#include <array>
#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace qncomm {

/// The client's side of a remote serial port (RFC 2217), without any input or output of its own:
/// what the connection brought goes in, what is to be sent waits in Output, and the state tells how
/// the talk stands. Requests are sent as they are made; nothing here waits for their answers.
class ComPortClient final : private TelnetSink {
  public:
    /// The most bytes of the line that wait for a reader; those beyond are an overflow.
    static constexpr std::size_t MostData = std::size_t{64} * 1024;
    /// The most bytes of answers that wait to be sent: a server that asks for more is refused.
    static constexpr std::size_t MostOwed = 4096;

    // -- The connection

    /// Takes what the connection brought and appends the bytes of the line among it to data, which
    /// grows to MostData at most.
    void Receive(std::string_view bytes, std::string& data);
    /// What is to be sent, in its order; Sent removes from its start.
    std::string_view Output() const { return std::string_view(mOutput).substr(mSent); }
    void Sent(std::size_t count);

    // -- The talk

    /// Offers the options; to be done first, and Agreed awaited before any request.
    void Offer();
    /// Whether the server takes part in remote port control and in 8-bit data, both ways.
    bool Agreed() const;
    /// Why it does not go on: an option or a setting that the server refused; done when all is
    /// well.
    const IoResult& Refusal() const { return mRefusal; }

    /// Asks for these settings. The value that an answer names is compared: another one than that
    /// asked for is a refusal.
    void Configure(const LineSettings& settings);
    /// DTR and RTS, and that their like at the other end is to be told. No answer is awaited: a
    /// server whose device has no modem lines gives none.
    void HoldLines(bool dtr, bool rts);
    /// Asks to be told of the modem lines and of line errors.
    void AskForStates();
    void SetBreak(bool on);
    /// Bytes for the line.
    void Send(std::string_view data);
    /// Drops what the remote side has received for us: data is dropped here until the server has
    /// said that it did the same there.
    void PurgeReceived();
    /// Drops what the remote side has not put on its line yet.
    void PurgeUnsent();

    // -- The state

    /// Whether every request but a purge has been answered.
    bool Settled() const;
    bool Purging() const { return mPurging > 0; }
    /// Gives up on answers to purges, from now on when bForGood.
    void ForgetPurges(bool bForGood);
    /// What the server has not answered, in words; empty when nothing.
    std::string Unanswered() const;
    /// The DSR line as last reported; nothing when it never was.
    std::optional<bool> Dsr() const { return mDsr; }
    /// The line errors that the server has told of since the last call.
    LineErrors TakeLineErrors() { return std::exchange(mLineErrors, {}); }
    /// The server asked for a pause.
    bool Suspended() const { return mSuspended; }

  private:
    enum class Side { Ours, Theirs };
    struct Option {
        char option;
        Side side;
        const char* refusal = nullptr;         ///< what to tell when it is refused; null = go on
        bool asked = false;                    ///< our word is out, the answer is not in
        std::optional<bool> on = std::nullopt; ///< nothing = not spoken of
    };

    void OnData(std::string_view bytes) override;
    void OnOption(char verb, char option) override;
    void OnSubnegotiation(std::string_view bytes) override;

    void NoteLineState(unsigned state);
    void Answer(const comport::Request& answer);
    void Say(char verb, char option);
    /// Sends a request whose answer is awaited.
    void Ask(const comport::Request& request);
    /// Sends one whose answer makes no difference.
    void Tell(const comport::Request& request);
    void Refuse(const std::string& text);

    TelnetDecoder mDecoder;
    std::array<Option, 6> mOptions = AllOptions();
    static std::array<Option, 6> AllOptions();

    std::deque<comport::Request> mWaiting; ///< for an answer
    int mPurging = 0;                      ///< how many of them are purges of what was received
    bool mPurgesAreAnswered = true;
    std::string mOutput;
    std::size_t mSent = 0; ///< bytes at its start that have gone
    std::string* mData = nullptr;
    IoResult mRefusal;
    std::optional<bool> mDsr;
    LineErrors mLineErrors;
    bool mSuspended = false;
};

} // namespace qncomm
