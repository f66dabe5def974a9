#include "DeviceBrowser.h"

#include "CommandBar.h"
#include "DeviceReader.h"
#include "EmptyHint.h"
#include "FileCommand.h"
#include "FileView.h"
#include "ListLooks.h"
#include "Operations.h"
#include "PreviewPane.h"

#include "common/QNError.h"

#include <QAction>
#include <QMenu>
#include <QSortFilterProxyModel>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>

namespace qnterm {
namespace {

QTableView* NewDeviceView(DeviceList& devices) {
    auto* view = new QTableView;
    view->setModel(&devices);
    view->setAccessibleName(DeviceBrowser::tr("Devices of the printer"));
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    LookLikeAList(*view, DeviceList::NameColumn);
    return view;
}

} // namespace

DeviceBrowser::DeviceBrowser(Operations& operations, SentFiles& sent, QWidget* parent)
    : QWidget(parent),
      mOperations(operations),
      mActions(operations, sent, this),
      mSorted(new QSortFilterProxyModel(this)),
      mDeviceView(NewDeviceView(mDevices)),
      mFileView(new FileView),
      mPreview(new PreviewPane(sent)),
      mCommandBar(new CommandBar(*this)) {
    mSorted->setSourceModel(&mFiles);
    mSorted->setSortRole(FileTable::SortRole);
    mSorted->setSortCaseSensitivity(Qt::CaseInsensitive);
    Build();
    BuildCommands();
    connect(mDeviceView->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &DeviceBrowser::ShowDevice);
    connect(mFileView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &DeviceBrowser::OnSelection);
    connect(mFileView, &FileView::FilesDropped, this, [this](const QStringList& paths) {
        if (const DeviceListing* device = Device()) mActions.SendFiles(*device, paths);
    });
    connect(mFileView, &QWidget::customContextMenuRequested, this, &DeviceBrowser::ShowMenu);
    connect(&mActions, &FileActions::Changed, this, &DeviceBrowser::Update);
    connect(&mOperations, &Operations::RunningChanged, this, &DeviceBrowser::EnableCommands);
    Empty();
}

void DeviceBrowser::Build() {
    mFileView->setModel(mSorted);
    mFileView->setAccessibleName(tr("Files on the device"));
    mFileView->sortByColumn(FileTable::NameColumn, Qt::AscendingOrder);
    mFileView->setContextMenuPolicy(Qt::CustomContextMenu);
    LookLikeAList(*mFileView, FileTable::NameColumn);
    mHint = new EmptyHint(*mFileView);
    setFocusProxy(mDeviceView);
    auto* lower = new QWidget;
    auto* lowerLayout = new QVBoxLayout(lower);
    lowerLayout->setContentsMargins(0, 0, 0, 0);
    lowerLayout->addWidget(mFileView, 1);
    lowerLayout->addWidget(mPreview);
    auto* splitter = new QSplitter(Qt::Vertical);
    splitter->addWidget(mDeviceView);
    splitter->addWidget(lower);
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 3);
    splitter->setChildrenCollapsible(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 0, 4, 4);
    layout->setSpacing(4);
    layout->addWidget(mCommandBar);
    layout->addWidget(splitter, 1);
}

void DeviceBrowser::BuildCommands() {
    mRefresh = mCommandBar->Add("refresh", tr("Re&fresh"), tr("Read the lists from the printer"),
                                QKeySequence(Qt::Key_F5));
    connect(mRefresh, &QAction::triggered, this, &DeviceBrowser::Refresh);
    mCommandBar->addSeparator();
    for (const FileCommand& command : FileCommands()) {
        QAction* action = mCommandBar->Add(command.icon, tr(command.text), tr(command.tip),
                                           QKeySequence(QString::fromLatin1(command.shortcut)));
        connect(action, &QAction::triggered, this, [this, &command] { Carry(command); });
        mCommands.push_back(action);
    }
}

void DeviceBrowser::Carry(const FileCommand& command) {
    const DeviceListing* device = Device();
    if (device == nullptr) return;
    const DeviceListing copy = *device; // the list may be read anew meanwhile
    command.act(mActions, copy, Names());
}

void DeviceBrowser::Refresh() {
    Reread(true);
}

void DeviceBrowser::Update() {
    Reread(false);
}

void DeviceBrowser::Reread(bool refresh) {
    if (!mKnown && !refresh) return;
    std::vector<DeviceListing> listings;
    // Only what the user asked for is told as done.
    const QString title = refresh ? tr("Read the printer's files") : QString();
    if (!mOperations.Run(title, [&](qncomm::QNComm& control) {
            listings = ReadDevices(control, mDevices.Listings(), refresh);
        }))
        return;
    mKnown = true;
    const DeviceListing* shown = Device();
    const std::string name = shown != nullptr ? shown->name : std::string();
    mDevices.SetListings(std::move(listings));
    const int row = std::max(0, mDevices.RowOf(name));
    if (mDevices.rowCount() > 0) mDeviceView->selectRow(row);
    ShowDevice();
}

void DeviceBrowser::Empty() {
    mKnown = false;
    mDevices.SetListings({});
    ShowDevice();
}

const DeviceListing* DeviceBrowser::Device() const {
    const QModelIndex current = mDeviceView->selectionModel()->currentIndex();
    if (!current.isValid()) return nullptr;
    return &mDevices.Listings().at(static_cast<std::size_t>(current.row()));
}

std::vector<std::string> DeviceBrowser::Names() const {
    std::vector<std::string> names;
    for (const QModelIndex& row : mFileView->selectionModel()->selectedRows())
        names.push_back(mFiles.At(mSorted->mapToSource(row).row()).Name);
    return names;
}

void DeviceBrowser::ShowDevice() {
    const DeviceListing* device = Device();
    const bool plain = device == nullptr || device->kind == DeviceKind::Files;
    mFiles.SetFiles(device != nullptr ? device->files : nullptr);
    // The printer does not report font sizes.
    mFileView->setColumnHidden(FileTable::SizeColumn,
                               device != nullptr && device->kind == DeviceKind::Fonts);
    mPreview->setVisible(!plain && mFiles.rowCount() > 0);
    mPreview->ShowNothing();
    mHint->Say(Hint());
    EnableCommands();
}

/// What to do when the table is empty.
QString DeviceBrowser::Hint() const {
    if (!isEnabled()) return tr("Choose a printer to see its files.");
    if (!mKnown) return tr("Press F5 to read the printer's files.");
    if (Device() == nullptr) return tr("This printer cannot list its files.");
    return tr("Nothing is here. Drop files to send them to the printer.");
}

void DeviceBrowser::OnSelection() {
    EnableCommands();
    const DeviceListing* device = Device();
    const auto names = Names();
    if (device == nullptr || device->kind == DeviceKind::Files) return;
    if (names.size() == 1)
        mPreview->ShowEntry(device->kind, names.front());
    else
        mPreview->ShowNothing();
}

void DeviceBrowser::EnableCommands() {
    const DeviceListing* device = Device();
    const std::size_t count = Names().size();
    const bool idle = !mOperations.Running();
    mRefresh->setEnabled(idle);
    for (std::size_t i = 0; i < mCommands.size(); ++i) {
        const FileCommand& command = FileCommands()[i];
        const bool here = device != nullptr && command.IsFor(device->kind);
        mCommands[i]->setVisible(device == nullptr || here);
        mCommands[i]->setEnabled(idle && here && command.Fits(count));
    }
}

void DeviceBrowser::ShowMenu(const QPoint& at) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(mRefresh);
    menu->addSeparator();
    menu->addActions({mCommands.begin(), mCommands.end()});
    menu->popup(mFileView->viewport()->mapToGlobal(at));
}

} // namespace qnterm
