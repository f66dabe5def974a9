#include "Rfc2217Talk.h"

#include <array>
#include <cerrno>
#include <string>
#include <utility>

namespace qncomm {

struct Rfc2217Talk::Question {
    void (*ask)(Rfc2217Session& session, const LineSettings& settings, std::int64_t nowUs);
    bool (*answered)(const Rfc2217Session& session);
    /// What has come of it, once it is answered.
    IoResult (*take)(Rfc2217Session& session);
    std::int64_t limitUs;
    /// What has come of it without an answer.
    IoResult (*late)(const Rfc2217Session& session);
    const char* lost; ///< behind the text of a connection that has ended meanwhile
};

namespace {

using Question = Rfc2217Talk::Question;

IoResult NoAnswer(const std::string& what) {
    return {IoStatus::TimedOut, ETIMEDOUT, what};
}

IoResult NoAgreement(const Rfc2217Session& session) {
    return NoAnswer(session.heard
                        ? "who listens there does not speak RFC 2217: no answer to its options"
                        : "who listens there says nothing: it serves somebody else, or does "
                          "not speak RFC 2217");
}

IoResult NoSetting(const Rfc2217Session& session) {
    return NoAnswer("the remote port does not answer to the setting of "
                    + session.protocol.Unanswered());
}

bool IsSettled(const Rfc2217Session& session) {
    return session.protocol.Settled();
}

IoResult Refusal(Rfc2217Session& session) {
    return session.protocol.Refusal();
}

void Open(Rfc2217Session& session, const LineSettings& settings, std::int64_t nowUs) {
    ComPortClient& protocol = session.protocol;
    session.awaitsModemLines = !std::exchange(session.toldModemLines, true);
    // What a former opening left there goes now. Closing was too early for that: the last bytes of
    // a transfer may just have been on their way.
    protocol.PurgeUnsent();
    session.DiscardInput(nowUs); // goes first: when the others are answered and it is not, it
                                 // never is
    if (session.awaitsModemLines) protocol.AskForStates();
    protocol.HoldLines(true, true);
    protocol.Configure(settings);
}

IoResult Opened(Rfc2217Session& session) {
    if (session.protocol.Purging()) session.protocol.ForgetPurges(true);
    return Refusal(session);
}

constexpr Question Agree{
    .ask = [](Rfc2217Session& session, const LineSettings&,
              std::int64_t) { session.protocol.Offer(); },
    .answered =
        [](const Rfc2217Session& session) {
            return session.protocol.Agreed() || !session.protocol.Refusal().Ok();
        },
    .take = Refusal,
    .limitUs = Rfc2217Talk::LongestAnswerUs,
    .late = NoAgreement,
    .lost = " before it answered: somebody else may hold the port",
};

constexpr Question Set{
    .ask = Open,
    .answered = IsSettled,
    .take = Opened,
    .limitUs = Rfc2217Talk::LongestAnswerUs,
    .late = NoSetting,
    .lost = "",
};

constexpr Question Tell{
    .ask = [](Rfc2217Session&, const LineSettings&, std::int64_t) {},
    .answered =
        [](const Rfc2217Session& session) {
            return !session.awaitsModemLines || session.protocol.Dsr().has_value();
        },
    .take = [](Rfc2217Session&) { return IoResult{}; },
    .limitUs = Rfc2217Talk::ModemStateLimitUs,
    .late = [](const Rfc2217Session&) { return IoResult{}; },
    .lost = "",
};

constexpr Question SetAnew{
    .ask = [](Rfc2217Session& session, const LineSettings& settings,
              std::int64_t) { session.protocol.Configure(settings); },
    .answered = IsSettled,
    .take = Refusal,
    .limitUs = Rfc2217Talk::LongestAnswerUs,
    .late = NoSetting,
    .lost = "",
};

constexpr std::array OpeningQuestions{Agree, Set, Tell};
constexpr std::array ChangeQuestions{SetAnew};

} // namespace

constinit const Rfc2217Talk::Questions Rfc2217Talk::Opening{OpeningQuestions};
constinit const Rfc2217Talk::Questions Rfc2217Talk::Agreement{OpeningQuestions.data(), 1};
constinit const Rfc2217Talk::Questions Rfc2217Talk::OpeningAgain{OpeningQuestions.data() + 1, 2};
constinit const Rfc2217Talk::Questions Rfc2217Talk::Change{ChangeQuestions};

Rfc2217Talk::Rfc2217Talk(const Reactor& reactor, Rfc2217Session& session, Questions questions,
                         const LineSettings& settings)
    : mReactor(reactor), mSession(session), mQuestions(questions), mSettings(settings) {
    Ask();
}

void Rfc2217Talk::Ask() {
    const std::int64_t now = mReactor.NowUs();
    mUntilUs = now + mQuestions[mAt].limitUs;
    mQuestions[mAt].ask(mSession, mSettings, now);
}

bool Rfc2217Talk::GoOn() {
    if (mResult) return true;
    IoResult result = mSession.Receive(Rfc2217Session::PieceSize, mReactor.NowUs());
    while (result.Ok() && mAt < mQuestions.size()) {
        result = mSession.Flush();
        if (!result.Ok()) break;
        const Question& question = mQuestions[mAt];
        const bool answered = question.answered(mSession);
        if (!answered && mReactor.NowUs() < mUntilUs) return false;
        result = answered ? question.take(mSession) : question.late(mSession);
        if (result.Ok() && ++mAt < mQuestions.size()) Ask();
    }
    if (result.status == IoStatus::Lost) result.text += mQuestions[mAt].lost;
    mResult = std::move(result);
    return true;
}

FdEvents Rfc2217Talk::Awaited() const {
    return {.readable = true, .writable = !mSession.protocol.Output().empty()};
}

} // namespace qncomm
