#include "AddressDialog.h"

#include "assembly/AllChannelKinds.h"
#include "assembly/PortBook.h"
#include "qt/Mnemonics.h"
#include "serial/PortAddress.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

namespace qnterm {
namespace {

constexpr int AddressRole = Qt::UserRole;
constexpr int HintRole = Qt::UserRole + 1;

/// What the virtual printer can be, the usual one first.
struct VirtualModel {
    const char* model;
    const char* text;
};
constexpr VirtualModel VirtualModels[] = {
    {"R7G", "8 dots per mm, 3 channels, scalable fonts"},
    {"R7H", "12 dots per mm, 3 channels, scalable fonts"},
    {"R7EZV", "8 dots per mm, 3 channels, scalable fonts"},
    {"R7FZV", "12 dots per mm, 3 channels, scalable fonts"},
    {"R7A", "8 dots per mm, 1 channel"},
    {"R7B", "8 dots per mm, 2 channels"},
    {"R7C", "8 dots per mm, not programmable"},
    {"R7D", "8 dots per mm, small memory"},
    {"R7E", "8 dots per mm, 2 channels"},
    {"R7F", "12 dots per mm, 2 channels"},
};

/// Addresses on the network as one begins to write them.
struct NetworkKind {
    const char* start;
    const char* text;
    const char* hint;
};
constexpr NetworkKind NetworkKinds[] = {
    {"tcp://", "Device server (raw socket)", "Go on with HOST:PORT, such as tcp://printer:4000."},
    {"rfc2217://", "Serial port of another machine (RFC 2217)",
     "Go on with HOST:PORT, such as rfc2217://server:4001."},
};

QString StateText(const qncomm::PortListing& port) {
    QString text = port.binding.description.empty()
                       ? AddressDialog::tr("Serial port")
                       : QString::fromStdString(port.binding.description);
    if (port.state == qncomm::PortState::Free || port.state == qncomm::PortState::Unchecked)
        return text;
    return text + QStringLiteral(" · ")
           + QString::fromStdString(port.detail.empty() ? NameOf(port.state) : port.detail);
}

} // namespace

AddressDialog::AddressDialog(const std::vector<qncomm::PortListing>& ports,
                             const std::string& sCurrent, QWidget* parent)
    : QDialog(parent),
      mChoices(new QTreeWidget),
      mAddress(new QLineEdit),
      mNote(new QLabel),
      mButtons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel)) {
    setWindowTitle(tr("Choose a printer"));
    Build();
    AddVirtualPrinters();
    AddPorts(ports);
    AddNetwork();
    mChoices->expandAll();
    mChoices->resizeColumnToContents(0);
    connect(mChoices, &QTreeWidget::currentItemChanged, this,
            [this](const QTreeWidgetItem* item) { OnRow(item); });
    connect(mChoices, &QTreeWidget::itemActivated, this, &AddressDialog::Decide);
    connect(mAddress, &QLineEdit::textChanged, this, &AddressDialog::Check);
    connect(mButtons, &QDialogButtonBox::accepted, this, &AddressDialog::Decide);
    connect(mButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    Select(sCurrent);
}

void AddressDialog::Build() {
    mChoices->setColumnCount(2);
    mChoices->setHeaderLabels({tr("Where the printer is"), tr("What it is")});
    mChoices->setAccessibleName(tr("Where the printer is"));
    mChoices->header()->setStretchLastSection(true);
    mChoices->setRootIsDecorated(false);
    mChoices->setItemsExpandable(false);
    mChoices->setTextElideMode(Qt::ElideMiddle);
    auto* label = new QLabel(tr("&Address:"));
    label->setBuddy(mAddress);
    mAddress->setAccessibleName(tr("Address"));
    mNote->setWordWrap(true);
    mNote->setMinimumHeight(2 * fontMetrics().lineSpacing());
    mNote->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    mButtons->button(QDialogButtonBox::Ok)->setText(tr("&Connect"));
    auto* line = new QHBoxLayout;
    line->addWidget(label);
    line->addWidget(mAddress, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(mChoices, 1);
    layout->addLayout(line);
    layout->addWidget(mNote);
    layout->addWidget(mButtons);
    qncomm::GiveMnemonics(*this);
    constexpr QSize usual{620, 460};
    resize(usual);
}

QTreeWidgetItem* AddressDialog::AddGroup(const QString& text) {
    auto* group = new QTreeWidgetItem(mChoices, {text});
    group->setFlags(Qt::ItemIsEnabled);
    group->setFirstColumnSpanned(true);
    QFont bold = font();
    bold.setBold(true);
    group->setFont(0, bold);
    return group;
}

void AddressDialog::AddVirtualPrinters() {
    QTreeWidgetItem* group = AddGroup(tr("Virtual printer, inside this program"));
    for (const VirtualModel& model : VirtualModels) {
        const QString name = QString::fromLatin1(model.model);
        auto* row = new QTreeWidgetItem(group, {tr("Virtual %1").arg(name), tr(model.text)});
        row->setData(0, AddressRole, QStringLiteral("sim:") + name);
    }
}

void AddressDialog::AddPorts(const std::vector<qncomm::PortListing>& ports) {
    QTreeWidgetItem* group = AddGroup(tr("Ports of this machine"));
    for (const qncomm::PortListing& port : ports) {
        if (port.binding.address.kind != &qncomm::TtyKind || port.binding.number == 0) continue;
        const QString address = QString::fromStdString(port.binding.address.text);
        auto* row = new QTreeWidgetItem(
            group, {tr("COM%1  %2").arg(port.binding.number).arg(address), StateText(port)});
        row->setData(0, AddressRole, address);
    }
    if (group->childCount() > 0) return;
    auto* none = new QTreeWidgetItem(group, {tr("None was found")});
    none->setFlags(Qt::NoItemFlags);
}

void AddressDialog::AddNetwork() {
    QTreeWidgetItem* group = AddGroup(tr("Network"));
    for (const NetworkKind& kind : NetworkKinds) {
        auto* row = new QTreeWidgetItem(group, {QString::fromLatin1(kind.start), tr(kind.text)});
        row->setData(0, AddressRole, QString::fromLatin1(kind.start));
        row->setData(0, HintRole, tr(kind.hint));
    }
}

/// Selects the row of an address, or its kind's, and puts it into the line; without one the virtual
/// printer.
void AddressDialog::Select(const std::string& address) {
    const QString text =
        address.empty() ? QStringLiteral("sim:R7G") : QString::fromStdString(address);
    QTreeWidgetItem* best = nullptr;
    for (QTreeWidgetItemIterator row(mChoices); *row != nullptr; ++row) {
        const QString own = (*row)->data(0, AddressRole).toString();
        if (own.isEmpty()) continue;
        const bool starts = own.endsWith(QLatin1Char('/')) || qncomm::IsVirtual(own.toStdString());
        if (text == own || (best == nullptr && starts && text.startsWith(own))) best = *row;
    }
    if (best != nullptr) mChoices->setCurrentItem(best);
    mAddress->setText(text);
    Check();
}

void AddressDialog::OnRow(const QTreeWidgetItem* item) {
    const QString address = item != nullptr ? item->data(0, AddressRole).toString() : QString();
    if (!address.isEmpty()) mAddress->setText(address);
}

void AddressDialog::Check() {
    const qncomm::PortAddressResult parsed =
        qncomm::ParsePortAddress(Address(), qncomm::AllChannelKinds());
    mButtons->button(QDialogButtonBox::Ok)->setEnabled(parsed.address.has_value());
    QString note = QString::fromStdString(parsed.error);
    for (const NetworkKind& kind : NetworkKinds)
        if (mAddress->text() == QLatin1String(kind.start)) note = tr(kind.hint);
    if (parsed.address && qncomm::IsVirtual(Address()))
        note =
            tr("Nothing is connected: the printer runs inside this program. Its labels are shown "
               "as pictures.");
    mNote->setText(note);
}

std::string AddressDialog::Address() const {
    return mAddress->text().trimmed().toStdString();
}

void AddressDialog::Decide() {
    if (!qncomm::ParsePortAddress(Address(), qncomm::AllChannelKinds()).address) {
        mAddress->setFocus();
        return;
    }
    accept();
    emit Chosen(Address());
}

} // namespace qnterm
