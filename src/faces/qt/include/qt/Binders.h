#pragma once

#include "common/ControlModels.h"
#include "qt/ActionGuard.h"

class QAbstractButton;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QTabBar;
class QWidget;

namespace qncomm {

// Each of these shows a control model on a widget until the widget goes. The model and the guard
// outlive the widget. What the user does at the widget goes to the model's own members, and the
// guard catches what they raise; the widget may go meanwhile. A caption without a key of its own
// keeps the one that GiveMnemonics chose.

/// A caption that never changes.
void Bind(const LabelModel& model, QLabel& label);
void Bind(const LabelModel& model, QGroupBox& frame);
void Bind(LabelModel& model, QLabel& label);
void Bind(ButtonModel& model, QAbstractButton& button, const ActionGuard& guard);
void Bind(CheckBoxModel& model, QCheckBox& box, const ActionGuard& guard);
void Bind(ListModel& model, QComboBox& list, const ActionGuard& guard);
/// Cursor and selection go both ways. Text of kind Line is shown as Windows-1252, of kind Host as
/// UTF-8; what the user types and the line has no byte for turns into "?" at once.
void Bind(TextBoxModel& model, QLineEdit& edit, const ActionGuard& guard);
void Bind(TabStripModel& model, QTabBar& strip, const ActionGuard& guard);
void Bind(ProgressBarModel& model, QProgressBar& bar);

} // namespace qncomm
