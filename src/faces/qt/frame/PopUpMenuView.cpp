#include "qt/PopUpMenuView.h"

#include "qt/Charset.h"
#include "qt/Icons.h"

namespace qncomm {

QMenu* ShowMenu(const PopUpMenu& menu, QWidget& parent, const QPoint& place,
                const std::function<void(std::int16_t)>& picked) {
    auto* shown = new QMenu(&parent);
    shown->setAttribute(Qt::WA_DeleteOnClose);
    QString keys;
    for (const PopUpMenu::Item& item : menu.items) {
        const QString caption = FromHost(item.caption);
        const QIcon icon = LineIcon(caption, shown->palette(), QPalette::WindowText);
        QString text = caption;
        if (!text.isEmpty() && !text.contains(u'&') && !keys.contains(text.front())) {
            keys += text.front();
            text.prepend(u'&');
        }
        QAction* action = shown->addAction(icon, text);
        QObject::connect(action, &QAction::triggered, &parent,
                         [picked, index = item.index] { picked(index); });
    }
    shown->popup(place);
    return shown;
}

} // namespace qncomm
