#pragma once

#include "DeviceList.h"
#include "FileActions.h"
#include "FileTable.h"
#include "SentFiles.h"

#include <QWidget>

#include <string>
#include <vector>

class QAction;
class QSortFilterProxyModel;
class QTableView;

namespace qnterm {

class CommandBar;
class EmptyHint;
class FileView;
class Operations;
class PreviewPane;
struct FileCommand;

/// The printer's storage: its devices, the files of the selected one, and what can be done with
/// them. Files that are dropped on the files are sent to that device.
class DeviceBrowser final : public QWidget {
    Q_OBJECT

  public:
    DeviceBrowser(Operations& operations, SentFiles& sent, QWidget* parent = nullptr);

    /// Reads every list from the printer.
    void Refresh();
    /// Reads the lists that are out of date; none before the first Refresh.
    void Update();
    /// Shows nothing, as for a printer that is not connected.
    void Empty();

    FileActions& Actions() { return mActions; }

  private:
    void Build();
    void BuildCommands();
    void Reread(bool refresh);
    void ShowDevice();
    QString Hint() const;
    void OnSelection();
    void EnableCommands();
    void Carry(const FileCommand& command);
    const DeviceListing* Device() const;
    std::vector<std::string> Names() const;
    void ShowMenu(const QPoint& at);

    Operations& mOperations;
    FileActions mActions;
    DeviceList mDevices;
    FileTable mFiles;
    QSortFilterProxyModel* mSorted;
    QTableView* mDeviceView;
    FileView* mFileView;
    EmptyHint* mHint = nullptr;
    PreviewPane* mPreview;
    CommandBar* mCommandBar;
    std::vector<QAction*> mCommands; ///< in the order of the table of commands
    QAction* mRefresh = nullptr;
    bool mKnown = false; ///< the printer has been asked
};

} // namespace qnterm
