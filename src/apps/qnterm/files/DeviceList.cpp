#include "DeviceList.h"

#include "Texts.h"

#include "qt/Charset.h"

#include <QLocale>

#include <algorithm>
#include <utility>

namespace qnterm {
namespace {

QString Bytes(const std::optional<std::int64_t>& bytes) {
    return bytes ? SizeText(*bytes) : QString();
}

QString CellText(const DeviceListing& device, int column) {
    switch (column) {
    case DeviceList::NameColumn:
        return TitleOf(device);
    case DeviceList::CountColumn:
        return QLocale().toString(
            static_cast<qulonglong>(device.files ? device.files->Count() : 0));
    case DeviceList::UsedColumn:
        return Bytes(device.used);
    default:
        return Bytes(device.free);
    }
}

} // namespace

QString TitleOf(const DeviceListing& device) {
    switch (device.kind) {
    case DeviceKind::Fonts:
        return QStringLiteral("Fonts");
    case DeviceKind::Images:
        return QStringLiteral("Images");
    default:
        return qncomm::FromLine(device.name);
    }
}

void DeviceList::SetListings(std::vector<DeviceListing> listings) {
    beginResetModel();
    mListings = std::move(listings);
    endResetModel();
}

int DeviceList::RowOf(const std::string& sName) const {
    const auto found = std::ranges::find(mListings, sName, &DeviceListing::name);
    return found == mListings.end() ? -1 : static_cast<int>(found - mListings.begin());
}

int DeviceList::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(mListings.size());
}

int DeviceList::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant DeviceList::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const DeviceListing& device = mListings.at(static_cast<std::size_t>(index.row()));
    if (role == Qt::DisplayRole) return CellText(device, index.column());
    if (role == Qt::TextAlignmentRole && index.column() != NameColumn)
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant DeviceList::headerData(int section, Qt::Orientation orientation, int role) const {
    static const QStringList titles{tr("Device"), tr("Files"), tr("Used"), tr("Free")};
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::DisplayRole) return titles.at(section);
    if (role == Qt::TextAlignmentRole && section != NameColumn)
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

} // namespace qnterm
