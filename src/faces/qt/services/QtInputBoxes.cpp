#include "qt/QtInputBoxes.h"

#include "qt/BusyCursor.h"
#include "qt/Charset.h"
#include "qt/QtDesktop.h"

#include <QInputDialog>
#include <QLabel>

namespace qncomm {
namespace {

constexpr int InputWidth = 360; // pixels

/// The prompt as it stands: it comes from a macro, where "&" marks no key and "<" no markup.
void ShowPrompt(QInputDialog& dialog, QString prompt) {
    dialog.setLabelText(prompt.replace(u'&', u"&&"_qs));
    for (QLabel* label : dialog.findChildren<QLabel*>()) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
}

} // namespace

std::string QtInputBoxes::ShowInputBox(const InputBox& box) {
    const BusyCursor::Pause pause;
    const QPointer<QInputDialog> dialog(new QInputDialog(BoxParent(mParent)));
    dialog->setInputMode(QInputDialog::TextInput);
    dialog->setWindowTitle(FromLine(box.title));
    ShowPrompt(*dialog, FromLine(box.prompt));
    dialog->setTextValue(FromLine(box.answer));
    dialog->resize(InputWidth, dialog->sizeHint().height());
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (!dialog) return {};
    std::string answer = accepted ? ToLine(dialog->textValue()) : std::string();
    delete dialog.data();
    return answer;
}

} // namespace qncomm
