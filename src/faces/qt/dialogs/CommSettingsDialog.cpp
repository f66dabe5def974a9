#include "CommSettingsDialog.h"

#include "qt/Binders.h"
#include "qt/Mnemonics.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

#include <array>

namespace qncomm {

CommSettingsDialog::CommSettingsDialog(frmCommSettings& form, Desktop& desktop, QWidget* parent)
    : FormDialog(form, desktop, parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(SettingsFrame(form));
    layout->addWidget(SearchFrame(form));
    layout->addWidget(Buttons(form));
    GiveMnemonics(*this);
}

QWidget* CommSettingsDialog::SettingsFrame(frmCommSettings& form) {
    struct Row {
        ListModel& list;
        const char* name;
    };
    const std::array<Row, 6> rows{{{form.cmbPort, "cmbPort"},
                                   {form.cmbBaudrate, "cmbBaudrate"},
                                   {form.cmbDatabits, "cmbDatabits"},
                                   {form.cmbParity, "cmbParity"},
                                   {form.cmbStopbits, "cmbStopbits"},
                                   {form.cmbFlowcontrol, "cmbFlowcontrol"}}};
    auto* frame = new QGroupBox(this);
    Bind(form.Frame2, *frame);
    auto* layout = new QFormLayout(frame);
    layout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        auto* list = new QComboBox(frame);
        list->setObjectName(QLatin1String(rows[i].name));
        Bind(rows[i].list, *list, Guard());
        layout->addRow(CaptionOf(form.Label1[i], *list), list);
    }
    return frame;
}

QWidget* CommSettingsDialog::SearchFrame(frmCommSettings& form) {
    struct Row {
        CheckBoxModel& box;
        const char* name;
    };
    const std::array<Row, 4> rows{{{form.chkDSRDetect, "chkDSRDetect"},
                                   {form.chkSearchAllPorts, "chkSearchAllPorts"},
                                   {form.chkUseHighestBaudrate, "chkUseHighestBaudrate"},
                                   {form.chkAutoConnect, "chkAutoConnect"}}};
    auto* frame = new QGroupBox(this);
    Bind(form.Frame1, *frame);
    auto* layout = new QVBoxLayout(frame);
    for (const Row& row : rows) {
        auto* box = new QCheckBox(frame);
        box->setObjectName(QLatin1String(row.name));
        Bind(row.box, *box, Guard());
        layout->addWidget(box);
    }
    auto* search = new QPushButton(frame);
    search->setObjectName(QLatin1String("cmdAutoConnect"));
    search->setAutoDefault(false);
    Bind(form.cmdAutoConnect, *search, Guard());
    layout->addWidget(search, 0, Qt::AlignRight);
    return frame;
}

QWidget* CommSettingsDialog::Buttons(frmCommSettings& form) {
    auto* ok = new QPushButton(this);
    auto* cancel = new QPushButton(this);
    ok->setObjectName(QLatin1String("cmdOK"));
    cancel->setObjectName(QLatin1String("cmdCancel"));
    Bind(form.cmdOK, *ok, Guard());
    Bind(form.cmdCancel, *cancel, Guard());
    return ButtonRow(*ok, *cancel);
}

} // namespace qncomm
