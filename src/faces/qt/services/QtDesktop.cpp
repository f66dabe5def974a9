#include "qt/QtDesktop.h"

#include "common/Text.h"
#include "qt/BusyCursor.h"
#include "qt/Charset.h"
#include "qt/ShownText.h"

#include <QApplication>
#include <QLoggingCategory>
#include <QMessageBox>

#include <array>

namespace qncomm {
namespace {

Q_LOGGING_CATEGORY(LogCategory, "qncomm")

/// What a set of buttons is to the toolkit; the first one answers Enter, the last one Esc.
struct ButtonSet {
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton enter;
    QMessageBox::StandardButton escape;
};

ButtonSet SetOf(MsgBoxButtons buttons) {
    switch (buttons) {
    case MsgBoxButtons::OkCancel:
        return {QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok, QMessageBox::Cancel};
    case MsgBoxButtons::YesNo:
        return {QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes, QMessageBox::No};
    case MsgBoxButtons::Ok:
        break;
    }
    return {QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok};
}

QMessageBox::Icon IconOf(MsgBoxIcon icon) {
    constexpr std::array icons{QMessageBox::NoIcon, QMessageBox::Critical, QMessageBox::Question,
                               QMessageBox::Warning, QMessageBox::Information};
    return icons[static_cast<std::size_t>(icon)];
}

MsgBoxResult ResultOf(int button) {
    switch (button) {
    case QMessageBox::Cancel:
        return MsgBoxResult::Cancel;
    case QMessageBox::Yes:
        return MsgBoxResult::Yes;
    case QMessageBox::No:
        return MsgBoxResult::No;
    default:
        return MsgBoxResult::Ok;
    }
}

/// Lines end in CR LF in the system's boxes; some begin with an empty one to stand lower.
QString BoxText(const std::string& text) {
    return FromEither(ReplaceAll(text, CrLf, "\n")).trimmed();
}

} // namespace

QWidget* BoxParent(QWidget* widget) {
    if (QWidget* modal = QApplication::activeModalWidget(); modal != nullptr) return modal;
    return widget != nullptr ? widget->window() : nullptr;
}

MsgBoxResult QtDesktop::ShowMsgBox(const MsgBox& box) {
    const BusyCursor::Pause pause;
    const ButtonSet set = SetOf(box.buttons);
    const QString title = FromEither(box.title.empty() ? ProductName : box.title);
    // On the heap: the parent may be destroyed meanwhile, and the box with it.
    const QPointer<QMessageBox> shown(
        NewBox(IconOf(box.icon), title, BoxText(box.text), set.buttons, BoxParent(mParent)));
    shown->setDefaultButton(set.enter);
    shown->setEscapeButton(set.escape);
    const int button = shown->exec();
    if (!shown) return ResultOf(set.escape);
    delete shown.data();
    return ResultOf(button);
}

void QtDesktop::Log(std::string_view sLine) {
    qCDebug(LogCategory).noquote() << FromEither(sLine);
}

} // namespace qncomm
