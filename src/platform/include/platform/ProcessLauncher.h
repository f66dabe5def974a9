#pragma once

#include "common/Launcher.h"

namespace qncomm {

/// Starts programs as processes of their own, never through a shell: they go on when this one ends,
/// are not reached by the Ctrl-C of its terminal, have empty input, their output is dropped, and
/// nothing is left to collect in this process when they end. For every face.
///
/// A program without "/" is searched for in PATH. A path that is written with "\" is taken as it is
/// when there is a file of that name, else with "/" in place of each "\"; its folder likewise.
class ProcessLauncher final : public Launcher {
  public:
    /// NotFound: there is no such program. Refused: it may not be run, it is not a program, or
    /// there is no such folder; with errno. The text begins with the program or folder it is about.
    LaunchResult Launch(const LaunchRequest& request) override;
};

} // namespace qncomm
