#pragma once

#include "qt/QtClipboard.h"
#include "qt/QtDesktop.h"
#include "qt/QtFileDialogs.h"
#include "qt/QtFormWindows.h"
#include "qt/QtInputBoxes.h"
#include "qt/QtLauncher.h"

namespace qncomm {

/// What a control asks of a Qt desktop, put together for one widget. Its boxes and forms belong to
/// the window that the widget is in at that time; the busy pointer is shown from now on.
struct QtServices {
    explicit QtServices(QWidget* parent);

    QtDesktop desktop;
    QtInputBoxes inputs;
    QtClipboard clipboard;
    QtFileDialogs files;
    QtLauncher launcher;
    QtFormWindows forms;
};

} // namespace qncomm
