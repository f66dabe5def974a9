#pragma once

#include "DeviceList.h"

#include "printer/clsPrinterFile.h"

#include <QAbstractTableModel>

#include <memory>
#include <string>
#include <vector>

namespace qnterm {

/// The files of one device as a table: name and size. Sorts by the value, not by its text.
class FileTable final : public QAbstractTableModel {
    Q_OBJECT

  public:
    enum Column { NameColumn, SizeColumn, ColumnCount };
    /// What a column is sorted by.
    static constexpr int SortRole = Qt::UserRole;

    using QAbstractTableModel::QAbstractTableModel;

    /// Shows a listing.
    void SetFiles(const std::shared_ptr<qncomm::PrinterFiles>& files);
    const qncomm::clsPrinterFile& At(int iRow) const;
    /// The row of a file, -1 for one that is not there.
    int RowOf(const std::string& sName) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    std::vector<std::shared_ptr<qncomm::clsPrinterFile>> mFiles;
};

} // namespace qnterm
