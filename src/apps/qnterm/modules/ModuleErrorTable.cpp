#include "ModuleErrorTable.h"

#include "qt/Charset.h"
#include "qt/ShownText.h"

namespace qnterm {
namespace {

QVariant TextOf(const qncomm::clsQNModuleError& error, int column) {
    switch (column) {
    case ModuleErrorTable::LineColumn:
        return error.QNErrInLine;
    case ModuleErrorTable::ErrorColumn:
        return QStringLiteral("%1 (%2)")
            .arg(qncomm::FromLine(error.QNErrDesc))
            .arg(error.QNErrCode);
    default:
        return qncomm::FromLine(error.QNText);
    }
}

} // namespace

void ModuleErrorTable::SetErrors(const std::shared_ptr<qncomm::ModuleErrors>& errors) {
    beginResetModel();
    mErrors.clear();
    if (errors) mErrors.assign(errors->begin(), errors->end());
    endResetModel();
}

int ModuleErrorTable::LineAt(int iRow) const {
    return mErrors.at(static_cast<std::size_t>(iRow))->QNErrInLine;
}

int ModuleErrorTable::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(mErrors.size());
}

int ModuleErrorTable::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ModuleErrorTable::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const qncomm::clsQNModuleError& error = *mErrors.at(static_cast<std::size_t>(index.row()));
    if (role == Qt::TextAlignmentRole && index.column() == LineColumn)
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::DisplayRole) return TextOf(error, index.column());
    if (role == Qt::ToolTipRole)
        return qncomm::TextOfATip(TextOf(error, index.column()).toString());
    return {};
}

QVariant ModuleErrorTable::headerData(int section, Qt::Orientation orientation, int role) const {
    static const QStringList titles{tr("Line"), tr("Error"), tr("Text")};
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::TextAlignmentRole && section == LineColumn)
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    return role == Qt::DisplayRole ? titles.at(section) : QVariant();
}

} // namespace qnterm
