#pragma once

#include "SetupModel.h"

#include <QWidget>

#include <cstdint>

class QLineEdit;
class QSortFilterProxyModel;

namespace qnterm {

class CommandBar;
class EmptyHint;
class Operations;
class SetupTree;

/// The printer's setup as a tree that can be searched and changed in place.
class SetupBrowser final : public QWidget {
    Q_OBJECT

  public:
    explicit SetupBrowser(Operations& operations, QWidget* parent = nullptr);

    /// Reads the setup from the printer.
    void Read();
    /// Shows nothing, as for a printer that is not connected.
    void Empty();

  private:
    void Build();
    void Change(const QString& key, const QString& value);
    void WriteFile();
    void LoadFile();
    void Search(const QString& text);
    void ShowHint();
    void ShowSetup(const qncomm::PrinterSetup& setup);

    Operations& mOperations;
    std::int32_t mGeneration = 0; ///< of the control, in which the setup was read
    SetupModel mModel;
    QSortFilterProxyModel* mFound;
    CommandBar* mCommandBar;
    QLineEdit* mSearch;
    SetupTree* mTree;
    EmptyHint* mHint = nullptr;
};

} // namespace qnterm
