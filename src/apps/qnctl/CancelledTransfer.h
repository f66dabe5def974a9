#pragma once

#include "common/MessageLoop.h"

#include <memory>

namespace qnctl {

class Session;

/// Cancels a transfer as soon as Ctrl-C is pressed, not with its next whole percent: what tells
/// the printer is to leave the line before the port is closed. The session outlives the result.
std::unique_ptr<qncomm::RunningTimer> CancelWithTheProgram(Session& session);

} // namespace qnctl
