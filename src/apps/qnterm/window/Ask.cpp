#include "Ask.h"

#include "qt/Mnemonics.h"
#include "qt/ShownText.h"

#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

namespace qnterm {
namespace {

QFileDialog* NewFileDialog(QWidget* parent, const QString& title, const QString& filter,
                           QFileDialog::FileMode mode) {
    auto* dialog = new QFileDialog(parent, title);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(mode);
    if (!filter.isEmpty()) dialog->setNameFilter(filter);
    return dialog;
}

} // namespace

void AskText(QWidget* parent, const QString& sTitle, const QString& sLabel, const QString& sInitial,
             const std::function<void(const QString&)>& answered) {
    auto* dialog = new QInputDialog(parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(sTitle);
    dialog->setLabelText(sLabel);
    dialog->setTextValue(sInitial);
    constexpr int usualWidth = 380;
    dialog->resize(usualWidth, dialog->sizeHint().height());
    qncomm::GiveMnemonics(*dialog);
    QObject::connect(
        dialog, &QInputDialog::textValueSelected, parent,
        [answered](const QString& text) {
            if (!text.trimmed().isEmpty()) answered(text.trimmed());
        },
        Qt::QueuedConnection);
    dialog->open();
}

void AskBefore(QWidget* parent, const QString& sText, const QString& sDetail,
               const QString& sButton, const std::function<void()>& agreed) {
    QMessageBox* box = qncomm::NewBox(QMessageBox::Warning, {}, sText, QMessageBox::Cancel, parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(QString(sButton).remove(QLatin1Char('&')));
    box->setInformativeText(qncomm::TextOfATip(sDetail));
    const QPushButton* button = box->addButton(sButton, QMessageBox::AcceptRole);
    box->setDefaultButton(QMessageBox::Cancel);
    qncomm::GiveMnemonics(*box);
    QObject::connect(
        button, &QPushButton::clicked, parent, [agreed] { agreed(); }, Qt::QueuedConnection);
    box->open();
}

void AskWhatNow(QWidget* parent, const QString& sTitle, const QString& sText,
                const QList<Choice>& choices) {
    QMessageBox* box =
        qncomm::NewBox(QMessageBox::Information, sTitle, sText, QMessageBox::Close, parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    for (const Choice& choice : choices) {
        const QPushButton* button = box->addButton(choice.button, QMessageBox::ActionRole);
        QObject::connect(
            button, &QPushButton::clicked, parent, [chosen = choice.chosen] { chosen(); },
            Qt::QueuedConnection);
    }
    qncomm::GiveMnemonics(*box);
    box->open();
}

void AskOpenFile(QWidget* parent, const QString& sTitle, const QString& sFilter,
                 const std::function<void(const QString&)>& chosen) {
    QFileDialog* dialog = NewFileDialog(parent, sTitle, sFilter, QFileDialog::ExistingFile);
    QObject::connect(dialog, &QFileDialog::fileSelected, parent, chosen, Qt::QueuedConnection);
    dialog->open();
}

void AskOpenFiles(QWidget* parent, const QString& sTitle, const QString& sFilter,
                  const std::function<void(const QStringList&)>& chosen) {
    QFileDialog* dialog = NewFileDialog(parent, sTitle, sFilter, QFileDialog::ExistingFiles);
    QObject::connect(dialog, &QFileDialog::filesSelected, parent, chosen, Qt::QueuedConnection);
    dialog->open();
}

void AskSaveFile(QWidget* parent, const QString& sTitle, const QString& sName,
                 const std::function<void(const QString&)>& chosen) {
    QFileDialog* dialog = NewFileDialog(parent, sTitle, {}, QFileDialog::AnyFile);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->selectFile(sName);
    QObject::connect(dialog, &QFileDialog::fileSelected, parent, chosen, Qt::QueuedConnection);
    dialog->open();
}

void AskFolder(QWidget* parent, const QString& sTitle,
               const std::function<void(const QString&)>& chosen) {
    QFileDialog* dialog = NewFileDialog(parent, sTitle, {}, QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    QObject::connect(dialog, &QFileDialog::fileSelected, parent, chosen, Qt::QueuedConnection);
    dialog->open();
}

} // namespace qnterm
