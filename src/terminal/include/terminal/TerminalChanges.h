#pragma once

#include "terminal/Terminal.h"

namespace qncomm {

/// The changes of a terminal, for the one painter that it has. A change is handed out once; the
/// terminal itself cannot be changed through it.
class TerminalChanges {
  public:
    /// The grid must outlive the object.
    explicit TerminalChanges(Terminal& grid) : mGrid(&grid) {}

    /// What changed on the screen since the last call; everything on the first.
    terminal::Damage TakeDamage() { return mGrid->TakeDamage(); }
    /// Whether the bell has rung since the last call.
    bool TakeBell() { return mGrid->TakeBell(); }

  private:
    Terminal* mGrid;
};

} // namespace qncomm
