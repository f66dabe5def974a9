#pragma once

#include "common/MessageLoop.h"

#include <memory>

namespace qnctl {

class Session;

/// Cancels a transfer as soon as Ctrl-C is pressed, not with its next whole percent: what tells
/// the printer is to leave the line before the port is closed. The session outlives the result.
std::unique_ptr<qncomm::RunningTimer> CancelWithTheProgram(Session& session);

/// Waits, after a cancel, until the printer is back at its prompt, so that the next command finds
/// it there. With bMoving bytes were on their way: what a pseudo-terminal, a socket or a device
/// server has taken cannot be taken back, and the printer gets it at the line's rate before the
/// cancel. Gives up when nothing comes any more, and throws OperationCancelled at a second Ctrl-C.
void AwaitPrompt(Session& session, bool bMoving);

} // namespace qnctl
