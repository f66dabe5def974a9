#pragma once

#include "serial/PortListing.h"

#include <QDialog>
#include <QString>

#include <string>
#include <vector>

class QDialogButtonBox;
class QLabel;
class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace qnterm {

/// Chooses where the printer is: a port of this machine, one on the network, or the virtual
/// printer. With nothing chosen before, the virtual printer is selected.
class AddressDialog final : public QDialog {
    Q_OBJECT

  public:
    /// sCurrent is the address in use; empty = none.
    AddressDialog(const std::vector<qncomm::PortListing>& ports, const std::string& sCurrent,
                  QWidget* parent = nullptr);

    /// The address as it stands in the dialog now.
    std::string Address() const;

  signals:
    /// The user has accepted a valid address.
    void Chosen(const std::string& sAddress);

  private:
    void Build();
    void AddVirtualPrinters();
    void AddPorts(const std::vector<qncomm::PortListing>& ports);
    void AddNetwork();
    QTreeWidgetItem* AddGroup(const QString& text);
    void Select(const std::string& address);
    void OnRow(const QTreeWidgetItem* item);
    void Check();
    void Decide();

    QTreeWidget* mChoices;
    QLineEdit* mAddress;
    QLabel* mNote;
    QDialogButtonBox* mButtons;
};

} // namespace qnterm
