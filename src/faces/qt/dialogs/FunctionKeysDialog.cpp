#include "FunctionKeysDialog.h"

#include "qt/Binders.h"
#include "qt/KeyCodes.h"
#include "qt/Mnemonics.h"

#include <QComboBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

namespace qncomm {
namespace {

constexpr int ComfortableTextWidth = 320; // pixels, about forty characters
constexpr int BrowseWidthInHeights = 2;   // three points need less room than a word

const QKeySequence& BrowseKey() {
    static const QKeySequence key(Qt::ALT | Qt::Key_B);
    return key;
}

} // namespace

FunctionKeysDialog::FunctionKeysDialog(frmFunctionKeysSetup& form, Desktop& desktop,
                                       QWidget* parent)
    : FormDialog(form, desktop, parent), mKeys(form) {
    auto* layout = new QVBoxLayout(this);
    auto* tabs = new QTabWidget(this);
    tabs->setObjectName(QLatin1String("SSTab1"));
    for (std::size_t i = 0; i < frmFunctionKeysSetup::KeyCount; ++i)
        tabs->addTab(PageOf(i), {});
    Bind(form.SSTab1, *tabs->tabBar(), Guard());
    tabs->tabBar()->setAccessibleName(windowTitle());
    layout->addWidget(tabs);
    QWidget* buttons = Buttons();
    layout->addWidget(buttons);

    // One page is shown at a time, so pages may use the same keys.
    const QString taken = GiveMnemonics(*buttons, GiveMnemonics(*tabs->tabBar(), u"B"_qs));
    for (int i = 0; i < tabs->count(); ++i)
        GiveMnemonics(*tabs->widget(i), taken);
    for (QWidget* child : findChildren<QWidget*>())
        child->installEventFilter(this);
}

QWidget* FunctionKeysDialog::PageOf(std::size_t index) {
    FunctionKeyPanel& panel = mKeys.pic1[index];
    const QString number = QString::number(index);
    auto* page = new QWidget(this);
    auto* caption = new QLabel(page);
    auto* kind = new QComboBox(page);
    auto* text = new QLineEdit(page);
    auto* browse = new QPushButton(page);
    kind->setObjectName(u"cmbAlt"_qs + number);
    text->setObjectName(u"txtAlt"_qs + number);
    browse->setObjectName(u"cmdAlt"_qs + number);

    Bind(panel.lblALT, *caption);
    Bind(panel.cmbAlt, *kind, Guard());
    Bind(panel.txtAlt, *text, Guard());
    Bind(panel.cmdAlt, *browse, Guard());
    caption->setBuddy(kind);
    kind->setAccessibleName(caption->text());
    text->setAccessibleName(tr("What the key sends, or the path"));
    text->setToolTip(tr("In a text, Ctrl and a letter insert the name of a control character,\n"
                        "such as <CR> for Ctrl+M."));
    text->setMinimumWidth(ComfortableTextWidth);
    browse->setAccessibleName(tr("Browse"));
    browse->setToolTip(tr("Browse (%1)").arg(BrowseKey().toString(QKeySequence::NativeText)));
    browse->setShortcut(BrowseKey());
    browse->setAutoDefault(false);
    browse->setFixedWidth(browse->sizeHint().height() * BrowseWidthInHeights);

    auto* layout = new QGridLayout(page);
    layout->addWidget(caption, 0, 0, 1, 3);
    layout->addWidget(kind, 1, 0);
    layout->addWidget(text, 1, 1);
    layout->addWidget(browse, 1, 2);
    layout->setColumnStretch(1, 1);
    layout->setRowStretch(2, 1);
    return page;
}

QWidget* FunctionKeysDialog::Buttons() {
    auto* ok = new QPushButton(this);
    auto* cancel = new QPushButton(this);
    ok->setObjectName(u"Command1_0"_qs);
    cancel->setObjectName(u"Command1_1"_qs);
    Bind(mKeys.Command1[0], *ok, Guard());
    Bind(mKeys.Command1[1], *cancel, Guard());
    return ButtonRow(*ok, *cancel);
}

bool FunctionKeysDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        KeyStroke stroke = KeyStrokeOf(*static_cast<QKeyEvent*>(event));
        if (stroke.code != 0) {
            frmFunctionKeysSetup& form = mKeys;
            Guard().Run([&] { form.Form_KeyDown(stroke.code, stroke.shift); });
            if (stroke.code == 0) return true;
        }
    }
    return FormDialog::eventFilter(watched, event);
}

} // namespace qncomm
