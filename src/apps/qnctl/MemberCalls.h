#pragma once

#include "MemberTexts.h"
#include "Session.h"

namespace qnctl {

/// Calls a member of the session's control, with the port as the member needs it: claimed, with a
/// printer found on it, and left so for the next call; open as for a shown terminal; or free. What
/// comes back goes to result.
Outcome CallOn(Session& session, const MemberCall& call, qncomm::MemberOutcome& result);

/// The result, and what was written back when it is asked for.
Json ResultDocument(const qncomm::MemberOutcome& result, bool showArguments);
void ShowResult(const Output& out, const qncomm::MemberOutcome& result, bool showArguments);

} // namespace qnctl
