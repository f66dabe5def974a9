#pragma once

#include "printer/clsPrinterSetupItem.h"

#include <QAbstractItemModel>
#include <QString>

#include <memory>
#include <string>
#include <vector>

namespace qnterm {

/// The printer's setup as a tree: sections within sections, the items' values in the second column.
/// A value that the user changes is sent to the printer, and shown here when it has been read back.
class SetupModel final : public QAbstractItemModel {
    Q_OBJECT

  public:
    enum Column { NameColumn, ValueColumn, ColumnCount };
    /// An item's whole key, such as "SER-COM,UART1,BAUDRATE"; empty for a section.
    static constexpr int KeyRole = Qt::UserRole;

    /// The most sections within sections; the rest of a longer path is one name.
    static constexpr int DeepestSection = 16;

    explicit SetupModel(QObject* parent = nullptr);
    ~SetupModel() override;

    /// Shows a setup. One with the same keys as before only changes values, so that a view stays as
    /// it is.
    void SetItems(const qncomm::PrinterSetup& items);
    void Clear();

    /// Where the value of an item stands; invalid for a key that is not there.
    QModelIndex ValueIndex(const QString& sKey) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

  signals:
    /// The user wants the item to have this value.
    void ChangeWanted(const QString& sKey, const QString& sValue);

  private:
    struct Node;
    class Planter;

    const Node& NodeOf(const QModelIndex& index) const;
    bool HasSameKeys(const qncomm::PrinterSetup& items) const;
    void TakeValues(const qncomm::PrinterSetup& items);

    std::unique_ptr<Node> mRoot;
    std::vector<Node*> mItems; ///< those that have a value, in the printer's order
};

} // namespace qnterm
