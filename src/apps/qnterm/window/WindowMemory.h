#pragma once

#include "common/RegSettings.h"

#include <memory>

class QMainWindow;

namespace qnterm {

/// Puts a window back where it was: its place, its docks, its toolbars. True when there was
/// something to put back.
bool RestoreWindow(QMainWindow& window, const qncomm::RegSettings& store);
/// Keeps them for the next start. Does nothing when the store cannot be written.
void KeepWindow(const QMainWindow& window, qncomm::RegSettings& store);

} // namespace qnterm
