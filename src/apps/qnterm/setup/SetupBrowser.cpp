#include "SetupBrowser.h"

#include "Ask.h"
#include "CommandBar.h"
#include "EmptyHint.h"
#include "Operations.h"
#include "SetupTree.h"

#include "control/QNComm.h"
#include "qt/Charset.h"

#include <QAction>
#include <QHeaderView>
#include <QLineEdit>
#include <QSortFilterProxyModel>
#include <QVBoxLayout>

namespace qnterm {

SetupBrowser::SetupBrowser(Operations& operations, QWidget* parent)
    : QWidget(parent),
      mOperations(operations),
      mFound(new QSortFilterProxyModel(this)),
      mCommandBar(new CommandBar(*this)),
      mSearch(new QLineEdit),
      mTree(new SetupTree) {
    mFound->setSourceModel(&mModel);
    mFound->setRecursiveFilteringEnabled(true);
    mFound->setAutoAcceptChildRows(true);
    mFound->setFilterKeyColumn(-1);
    mFound->setFilterCaseSensitivity(Qt::CaseInsensitive);
    Build();
    connect(mSearch, &QLineEdit::textChanged, this, &SetupBrowser::Search);
    // What is edited is done with before the printer is asked: the answer may change the tree.
    connect(&mModel, &SetupModel::ChangeWanted, this, &SetupBrowser::Change, Qt::QueuedConnection);
    connect(&mOperations, &Operations::RunningChanged, this, [this](bool running) {
        mCommandBar->setEnabled(!running);
        mTree->setEditTriggers(running ? QAbstractItemView::NoEditTriggers
                                       : QAbstractItemView::DoubleClicked
                                             | QAbstractItemView::EditKeyPressed
                                             | QAbstractItemView::SelectedClicked);
    });
}

void SetupBrowser::Build() {
    mCommandBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto add = [this](const char* icon, const QString& text, const QString& tip, auto run,
                            const QKeySequence& keys = {}) {
        connect(mCommandBar->Add(icon, text, tip, keys), &QAction::triggered, this, run);
    };
    add("refresh", tr("Re&fresh"), tr("Read the setup from the printer"), &SetupBrowser::Read,
        QKeySequence(Qt::Key_F5));
    mCommandBar->addSeparator();
    add("save", tr("&Write…"), tr("Write the setup to a file on the printer"),
        &SetupBrowser::WriteFile);
    add("open", tr("&Load…"), tr("Take the setup of a file on the printer"),
        &SetupBrowser::LoadFile);
    mSearch->setPlaceholderText(tr("Search items and values"));
    mSearch->setAccessibleName(tr("Search the setup"));
    mSearch->setClearButtonEnabled(true);
    mTree->setModel(mFound);
    mTree->setAccessibleName(tr("Setup of the printer"));
    mTree->setUniformRowHeights(true);
    mTree->setAlternatingRowColors(true);
    mTree->setAllColumnsShowFocus(true);
    mTree->header()->setStretchLastSection(true);
    mHint = new EmptyHint(*mTree);
    setFocusProxy(mSearch);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 0, 4, 4);
    layout->setSpacing(4);
    layout->addWidget(mCommandBar);
    layout->addWidget(mSearch);
    layout->addWidget(mTree, 1);
}

void SetupBrowser::Read() {
    std::shared_ptr<qncomm::PrinterSetup> setup;
    if (!mOperations.Run(tr("Read the printer's setup"),
                         [&](qncomm::QNComm& control) { setup = control.Setup(); })
        || !setup)
        return;
    mGeneration = mOperations.Generation();
    ShowSetup(*setup);
}

void SetupBrowser::ShowSetup(const qncomm::PrinterSetup& setup) {
    const bool first = mModel.rowCount() == 0;
    mModel.SetItems(setup);
    ShowHint();
    if (!first) return;
    mTree->expandAll();
    mTree->resizeColumnToContents(SetupModel::NameColumn);
}

void SetupBrowser::Empty() {
    mModel.Clear();
    ShowHint();
}

/// What to do when the tree is empty.
void SetupBrowser::ShowHint() {
    if (!isEnabled())
        mHint->Say(tr("Choose a printer to see its setup."));
    else if (mModel.rowCount() > 0)
        mHint->Say(tr("No item and no value has this text."));
    else
        mHint->Say(tr("Press F5 to read the printer's setup."));
}

void SetupBrowser::Search(const QString& text) {
    mFound->setFilterFixedString(text);
    if (!text.isEmpty()) mTree->expandAll();
}

/// Changes an item and reads the setup again: what the printer made of the value is what counts.
void SetupBrowser::Change(const QString& key, const QString& value) {
    const bool changed =
        mOperations.RunOn(mGeneration, tr("Change %1").arg(key), [&](qncomm::QNComm& control) {
            control.ChangePrinterSetupItem(qncomm::ToLine(key), qncomm::ToLine(value));
        });
    if (changed) Read();
}

void SetupBrowser::WriteFile() {
    AskText(this, tr("Write the setup"), tr("File on the printer:"), QStringLiteral("c:SETUP.TXT"),
            [this](const QString& name) {
                mOperations.Run(
                    tr("Write the setup to %1").arg(name),
                    [&](qncomm::QNComm& control) { control.SetupWriteFile(qncomm::ToLine(name)); });
            });
}

void SetupBrowser::LoadFile() {
    AskText(this, tr("Load a setup"), tr("File on the printer:"), QStringLiteral("c:SETUP.TXT"),
            [this](const QString& name) {
                const bool loaded = mOperations.Run(
                    tr("Load the setup from %1").arg(name),
                    [&](qncomm::QNComm& control) { control.SetupLoadFile(qncomm::ToLine(name)); });
                if (loaded) Read();
            });
}

} // namespace qnterm
