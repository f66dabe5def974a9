#pragma once

#include "printer/clsPrinterFile.h"

#include <QAbstractTableModel>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qnterm {

/// What a device of the printer holds.
enum class DeviceKind { Files, Fonts, Images };

/// One of the printer's devices with its last listing.
struct DeviceListing {
    std::string name; ///< with its colon, such as "c:"
    DeviceKind kind = DeviceKind::Files;
    std::shared_ptr<qncomm::PrinterFiles> files;
    std::optional<std::int64_t> used; ///< bytes; absent where the printer does not tell
    std::optional<std::int64_t> free;
    std::int32_t generation = 0; ///< of the control, in which it was read
};

/// The printer's devices as a table: name, number of files, used and free bytes.
class DeviceList final : public QAbstractTableModel {
    Q_OBJECT

  public:
    enum Column { NameColumn, CountColumn, UsedColumn, FreeColumn, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    void SetListings(std::vector<DeviceListing> listings);
    const std::vector<DeviceListing>& Listings() const { return mListings; }

    /// The row of a device, -1 for one that is not there.
    int RowOf(const std::string& sName) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    std::vector<DeviceListing> mListings;
};

/// How a device is called for the user: "Fonts", "Images", or its name.
QString TitleOf(const DeviceListing& device);

} // namespace qnterm
