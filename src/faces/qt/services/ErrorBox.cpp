#include "qt/ErrorBox.h"

#include "common/QNError.h"
#include "qt/ShownText.h"

#include <QApplication>
#include <QMessageBox>

namespace qncomm {

QString ErrorText(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const OperationCancelled&) {
        return {};
    } catch (const std::exception& known) {
        return QString::fromUtf8(known.what());
    } catch (...) {
        return QObject::tr("Unknown error.");
    }
}

void ShowError(QWidget* parent, const std::exception_ptr& error) {
    const QString text = ErrorText(error);
    if (text.isEmpty() || qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr)
        return;
    for (const QWidget* each : QApplication::topLevelWidgets()) {
        const auto* box = qobject_cast<const QMessageBox*>(each);
        if (box != nullptr && box->isVisible() && box->text() == ShownText(text)) return;
    }
    QMessageBox* box = NewBox(QMessageBox::Critical, QApplication::applicationDisplayName(), text,
                              QMessageBox::Ok, parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

} // namespace qncomm
