#pragma once

#include <QWidget>

#include <functional>

namespace qncomm::testing {

/// Shows the window and waits until it has the keys.
void ShowActive(QWidget& window);

/// Calls act with the next modal window that is shown and has the keys, from the event
/// loop that the window runs. A window that act leaves open fails the test and is closed.
void OnModal(std::function<void(QWidget&)> act);

/// The widget of that object name and type; ends the program when there is none, since a test has
/// nothing to act on then.
template <class Widget>
Widget& Named(QWidget& window, const char* name) {
    auto* found = window.findChild<Widget*>(QLatin1String(name));
    if (found == nullptr) qFatal("no such widget: %s", name);
    return *found;
}

} // namespace qncomm::testing
