#include "MemberCalls.h"

#include "ShownTerminal.h"

namespace qnctl {
namespace {

using qncomm::MemberNeeds;

Outcome CallWithPort(Session& session, const MemberCall& call, qncomm::MemberOutcome& result) {
    const auto work = [&] {
        result = CallMember(session.Control(), *call.member, call.arguments);
        return Outcome{};
    };
    switch (call.member->needs) {
    case MemberNeeds::Nothing:
        return work();
    case MemberNeeds::Printer:
        if (!session.Connected())
            if (Outcome connected = session.Connect(); !connected.Ok()) return connected;
        return work();
    case MemberNeeds::OpenPort: {
        session.Disconnect();
        session.Assembly().OpenPort(); // says why when it cannot be opened
        const ShownTerminal shown(session, {});
        return work();
    }
    case MemberNeeds::FreshClaim:
        if (!session.Connected())
            if (Outcome connected = session.Connect(); !connected.Ok()) return connected;
        [[fallthrough]];
    case MemberNeeds::FreePort:
        session.Disconnect();
        return work();
    }
    return {};
}

} // namespace

Outcome CallOn(Session& session, const MemberCall& call, qncomm::MemberOutcome& result) {
    session.TakePortRefusal(); // of a call before
    Outcome outcome;
    try {
        outcome = CallWithPort(session, call, result);
    } catch (const qncomm::QNError& error) {
        return session.Interrupted() ? Cancelled() : session.Failed(error);
    }
    // Some members return quietly when the port could not be had.
    if (outcome.Ok() && (session.TakePortRefusal() || session.Serial().LastFailure()))
        return session.NotFound();
    return outcome;
}

Json ResultDocument(const qncomm::MemberOutcome& result, bool showArguments) {
    Json document{{"result", JsonOf(result.result)}};
    if (showArguments) document["arguments"] = JsonOf(qncomm::Variant(result.writtenBack));
    return document;
}

void ShowResult(const Output& out, const qncomm::MemberOutcome& result, bool showArguments) {
    ShowValue(out, result.result);
    if (!showArguments) return;
    for (const auto& [name, value] : result.writtenBack)
        out.Line(name + " = " + LineOf(value));
}

} // namespace qnctl
