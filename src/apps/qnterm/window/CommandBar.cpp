#include "CommandBar.h"

#include "Icons.h"

#include <QAction>

namespace qnterm {
namespace {

constexpr int PictureSize = 20;

} // namespace

CommandBar::CommandBar(QWidget& part) : mPart(part) {
    setIconSize(QSize(PictureSize, PictureSize));
}

QAction* CommandBar::Add(const char* sIcon, const QString& sText, const QString& sTip,
                         const QKeySequence& keys) {
    auto* action = new QAction(ThemedIcon(sIcon), sText, &mPart);
    action->setShortcut(keys);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    action->setToolTip(keys.isEmpty() ? sTip
                                      : QStringLiteral("%1 (%2)").arg(sTip, keys.toString()));
    action->setStatusTip(sTip);
    mPart.addAction(action);
    addAction(action);
    mRow.Add(*qobject_cast<QToolButton*>(widgetForAction(action)));
    return action;
}

} // namespace qnterm
