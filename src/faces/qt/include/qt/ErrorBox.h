#pragma once

#include <QString>

#include <exception>

class QWidget;

namespace qncomm {

/// What the error says to a user; empty for an operation that the user has cancelled.
QString ErrorText(const std::exception_ptr& error);

/// Shows the error in a message box of its own and returns at once. An error without text shows
/// none, and one whose box is still open shows no second one.
void ShowError(QWidget* parent, const std::exception_ptr& error);

} // namespace qncomm
