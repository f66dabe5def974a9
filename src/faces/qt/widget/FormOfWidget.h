#pragma once

#include "control/ControlHost.h"

#include <QWidget>

#include <cstdint>
#include <memory>
#include <vector>

namespace qncomm {

// The form that a widget stands on, whatever holds it there: a dock window of a main window, a
// layout, or nothing but its own geometry.

/// Whether a layout, of its parent or a dock window's, places the widget.
bool IsLaidOut(const QWidget& widget);

/// How high the form is inside, without its menus and status bars.
int FormHeight(const QWidget& widget);

/// Gives the widget a height; one that is docked at the bottom grows upwards. False in a layout,
/// which asks the widget what it wants.
bool SetHeightOnForm(QWidget& widget, DockAlign align, int height);

/// Puts the widget at its edge of a form without a layout, above a status bar there.
void DockOnForm(QWidget& widget, DockAlign align);

/// All controls of the form.
std::vector<std::shared_ptr<ContainerControl>> ControlsOfForm(const QWidget& widget);

} // namespace qncomm
