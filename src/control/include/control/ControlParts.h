#pragma once

#include "common/Clipboard.h"
#include "common/Desktop.h"
#include "common/FileDialog.h"
#include "common/HostFiles.h"
#include "common/InputBox.h"
#include "common/Launcher.h"
#include "common/MessageLoop.h"
#include "control/ControlHost.h"
#include "control/ViewportTerminal.h"
#include "dialogs/FormWindows.h"
#include "link/LinkOptions.h"
#include "link/SerialControl.h"

#include <memory>

namespace qncomm {

/// What a control asks of the desktop it runs on.
///
/// None is owned. They must live until one turn of the loop after the control is destroyed and its
/// last running operation has returned.
struct ControlServices {
    MessageLoop& loop;     ///< every wait of an operation yields to it
    Desktop& desktop;      ///< message boxes, and the log of what was refused
    InputBoxes& inputs;    ///< what text macros ask
    Clipboard& clipboard;  ///< of CopyCB and PasteCB
    FileDialogs& files;    ///< asks which files toolbar and dialogs send and receive
    Launcher& launcher;    ///< starts the programs of function keys
    FormWindows& forms;    ///< shows the four dialogs
    HostFiles& hostFiles;  ///< the files of this machine that operations read and write
    LinkOptions link = {}; ///< what its link does beyond the usual
};

/// What a control is put together from. None but keep is owned; they live as long as the services.
struct ControlParts {
    SerialControl& PDQComm1;    ///< the port; used by this control alone
    ViewportTerminal& terminal; ///< shows what the line brings
    ControlHost& host;          ///< the container and its form
    ControlWindow& window;      ///< the control's own window
    /// The owner of the serial control; kept as long as an operation or an event of the control is
    /// on the stack. May be null when the serial control outlives them by other means.
    std::shared_ptr<void> keep = {};
};

} // namespace qncomm
