#pragma once

#include "common/Launcher.h"

namespace qncomm {

/// Starts programs that outlive this one.
class QtLauncher : public Launcher {
  public:
    /// A program without a folder in its name is looked for on the search path.
    LaunchResult Launch(const LaunchRequest& request) override;
};

} // namespace qncomm
