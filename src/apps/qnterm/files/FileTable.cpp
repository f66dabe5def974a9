#include "FileTable.h"

#include "qt/Charset.h"

#include <QLocale>

#include <algorithm>

namespace qnterm {

void FileTable::SetFiles(const std::shared_ptr<qncomm::PrinterFiles>& files) {
    beginResetModel();
    mFiles.clear();
    if (files) mFiles.assign(files->begin(), files->end());
    endResetModel();
}

const qncomm::clsPrinterFile& FileTable::At(int iRow) const {
    return *mFiles.at(static_cast<std::size_t>(iRow));
}

int FileTable::RowOf(const std::string& sName) const {
    const auto found =
        std::ranges::find_if(mFiles, [&](const auto& file) { return file->Name == sName; });
    return found == mFiles.end() ? -1 : static_cast<int>(found - mFiles.begin());
}

int FileTable::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(mFiles.size());
}

int FileTable::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant FileTable::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const qncomm::clsPrinterFile& file = At(index.row());
    const bool size = index.column() == SizeColumn;
    if (role == SortRole) return size ? QVariant(file.Size) : QVariant(qncomm::FromLine(file.Name));
    if (role == Qt::DisplayRole)
        return size ? QLocale().toString(file.Size) : qncomm::FromLine(file.Name);
    if (role == Qt::TextAlignmentRole && size)
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant FileTable::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::DisplayRole) return section == NameColumn ? tr("Name") : tr("Bytes");
    if (role == Qt::TextAlignmentRole && section == SizeColumn)
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

} // namespace qnterm
