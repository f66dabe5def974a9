#include "BinaryTransferDialog.h"

#include "ElidedLabel.h"
#include "qt/Binders.h"
#include "qt/Mnemonics.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>

namespace qncomm {

BinaryTransferDialog::BinaryTransferDialog(frmBinaryTransfer& form, Desktop& desktop,
                                           QWidget* parent)
    : FormDialog(form, desktop, parent) {
    auto* protocol = new QComboBox(this);
    auto* filename = new QLineEdit(this);
    auto* browse = new QPushButton(this);
    auto* folder = new ElidedLabel(this);
    protocol->setObjectName(u"cmbProtocol"_qs);
    filename->setObjectName(u"txtFilename"_qs);
    browse->setObjectName(u"cmdBrowse"_qs);
    folder->setObjectName(u"lblFolder"_qs);
    Bind(form.cmbProtocol, *protocol, Guard());
    Bind(form.txtFilename, *filename, Guard());
    Bind(form.cmdBrowse, *browse, Guard());
    Bind(form.lblFolder, *folder);
    browse->setAutoDefault(false);

    auto* folderCaption = new QLabel(this);
    Bind(form.lblFolderCaption, *folderCaption);

    auto* layout = new QGridLayout(this);
    layout->addWidget(CaptionOf(form.lblProtocol, *protocol), 0, 0);
    layout->addWidget(protocol, 0, 1, 1, 2);
    layout->addWidget(CaptionOf(form.lblFilename, *filename), 1, 0);
    layout->addWidget(filename, 1, 1);
    layout->addWidget(browse, 1, 2);
    layout->addWidget(folderCaption, 2, 0);
    layout->addWidget(folder, 2, 1, 1, 2);
    layout->setColumnStretch(1, 1);
    layout->setRowStretch(3, 1);
    layout->addWidget(Buttons(form), 4, 0, 1, 3);
    GiveMnemonics(*this);
    filename->setFocus();
}

QWidget* BinaryTransferDialog::Buttons(frmBinaryTransfer& form) {
    auto* action = new QPushButton(this);
    auto* cancel = new QPushButton(this);
    action->setObjectName(u"cmdButton0"_qs);
    cancel->setObjectName(u"cmdButton1"_qs);
    Bind(form.cmdButton[0], *action, Guard());
    Bind(form.cmdButton[1], *cancel, Guard());
    return ButtonRow(*action, *cancel);
}

} // namespace qncomm
