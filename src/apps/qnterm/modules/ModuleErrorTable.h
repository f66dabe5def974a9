#pragma once

#include "printer/clsQNModuleError.h"

#include <QAbstractTableModel>

#include <memory>
#include <vector>

namespace qnterm {

/// The errors that the printer reported for a module's lines.
class ModuleErrorTable final : public QAbstractTableModel {
    Q_OBJECT

  public:
    enum Column { LineColumn, ErrorColumn, TextColumn, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    void SetErrors(const std::shared_ptr<qncomm::ModuleErrors>& errors);
    /// The line of the module that an error is in, from 1.
    int LineAt(int iRow) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    std::vector<std::shared_ptr<qncomm::clsQNModuleError>> mErrors;
};

} // namespace qnterm
