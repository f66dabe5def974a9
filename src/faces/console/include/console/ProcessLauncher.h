#pragma once

#include "common/Launcher.h"

namespace qncomm {

/// Starts programs as processes of their own, never through a shell: they go on when this one ends,
/// are out of reach of its terminal's Ctrl-C, read nothing and write nowhere, and leave no trace in
/// this process when they end.
///
/// A program without "/" is searched for in PATH. One that is written with "\" is taken as it is
/// when there is a file of that name, else with "/" in place of each "\"; its folder likewise.
class ProcessLauncher final : public Launcher {
  public:
    /// NotFound: no such program. Refused: no permission, no program, or no such folder.
    LaunchResult Launch(const LaunchRequest& request) override;
};

} // namespace qncomm
