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
    /// parent may be null; it may be destroyed before the services.
    explicit QtServices(QWidget* parent);

    QtDesktop desktop;     ///< message boxes and the log
    QtInputBoxes inputs;   ///< input boxes
    QtClipboard clipboard; ///< the desktop's clipboard
    QtFileDialogs files;   ///< file dialogs
    QtLauncher launcher;   ///< programs that a macro starts
    QtFormWindows forms;   ///< the windows of the forms
};

} // namespace qncomm
