#pragma once

#include "Rfc2217Session.h"
#include "platform/Reactor.h"
#include "serial/LineSettings.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace qncomm {

/// A talk with a server of remote serial ports that ends in an agreement: question after question,
/// each with a time of its own for its answer. It never waits: whoever holds it looks how far it is
/// when the connection is ready. What the server says meanwhile makes no answer's time longer.
class Rfc2217Talk {
  public:
    /// How long an answer may take, in microseconds.
    static constexpr std::int64_t LongestAnswerUs = 3'000'000;
    /// How long a server that has answered all else may take to tell its modem lines.
    static constexpr std::int64_t ModemStateLimitUs = 200'000;

    struct Question;
    using Questions = std::span<const Question>;

    /// What is asked on a new connection: whether it is a remote serial port.
    static const Questions Agreement;
    /// The same, and that its line is set and its modem lines are told.
    static const Questions Opening;
    /// The same without the agreement, on a connection that has it.
    static const Questions OpeningAgain;
    /// That the settings of the open line change.
    static const Questions Change;

    /// Begins. Session and reactor must outlive it.
    Rfc2217Talk(const Reactor& reactor, Rfc2217Session& session, Questions questions,
                const LineSettings& settings);

    /// Takes one piece of what has come and goes on as far as that leads; whether it has ended.
    bool GoOn();
    bool HasEnded() const { return mResult.has_value(); }
    /// How it has ended; done while it has not.
    IoResult Result() const { return mResult.value_or(IoResult{}); }
    /// Whether the connection had been agreed on before it.
    bool IsOnKnownConnection() const { return mQuestions.data() == OpeningAgain.data(); }
    /// What it is about.
    const LineSettings& Settings() const { return mSettings; }

    /// What the connection must be ready for before GoOn can get further.
    FdEvents Awaited() const;
    /// When GoOn is to be called at the latest, in microseconds of the reactor.
    std::int64_t DueUs() const { return mUntilUs; }

  private:
    void Ask();

    const Reactor& mReactor;
    Rfc2217Session& mSession;
    Questions mQuestions;
    LineSettings mSettings;
    std::size_t mAt = 0;
    std::int64_t mUntilUs = 0;
    std::optional<IoResult> mResult;
};

} // namespace qncomm
