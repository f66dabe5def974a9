#pragma once

#include "SizerGrip.h"
#include "TerminalView.h"
#include "WidgetSurroundings.h"
#include "qt/QtPropertyBag.h"
#include "qt/QtReactor.h"
#include "qt/QtServices.h"
#include "qt/TitleBar.h"
#include "qt/ToolbarView.h"

#include <QBasicTimer>

namespace qncomm {

struct QNCommWidget::Parts {
    Parts(QNCommWidget& widget, Mode ownMode);

    Mode mode;
    Surroundings surroundings;
    std::shared_ptr<QtServices> services; ///< shared with what is still on the stack at the end
    ActionGuard guard;
    std::unique_ptr<ControlAssembly> assembly;
    std::vector<Subscription> handlers;

    TitleBar* title = nullptr;
    ToolbarView* toolbar = nullptr;
    TerminalView* view = nullptr;
    SizerGrip* grip = nullptr;

    MemoryPropertyBag bag; ///< what was set
    std::shared_ptr<RegSettings> settings;
    QString address; ///< for the current port, once the settings say which that is
    QString helpFile;
    DockAlign align = DockNone;
    int wantedHeight = 0; ///< what a layout is asked for; 0: the usual one
    bool loaded = false;  ///< the control has read its properties
    bool active = false;  ///< the control was told that it is shown
    bool placing = false;
    bool focused = false;
    bool cancelAsked = false;
    QBasicTimer showTimer;   ///< tells the control that it is shown, once the window is there
    QBasicTimer cancelTimer; ///< looks whether the cancelled operation is over
};

} // namespace qncomm
