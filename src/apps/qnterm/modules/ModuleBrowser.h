#pragma once

#include "ModuleErrorTable.h"

#include <QWidget>

class QAction;
class QLabel;
class QLineEdit;
class QTableView;

namespace qnterm {

class CodeView;
class CommandBar;
class Operations;

/// A program module: its text, where it goes on the printer, and the errors that the printer found
/// in it. An error that is selected shows its line.
class ModuleBrowser final : public QWidget {
    Q_OBJECT

  public:
    explicit ModuleBrowser(Operations& operations, QWidget* parent = nullptr);

    /// Asks for a file and opens it.
    void ChooseFile();
    /// Opens a module's source file.
    void OpenFile(const QString& sPath);
    /// Whether there is a printer to upload to.
    void SetHasPort(bool bHasPort);
    /// Types the text into the printer and saves it there.
    void Upload();

  signals:
    /// A module has been saved on the printer.
    void Uploaded();

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void Build();
    void SaveFile();
    void SaveAs();
    void WriteTo(const QString& path);
    void Link();
    void ShowErrors(const std::shared_ptr<qncomm::ModuleErrors>& errors, const QString& target);
    void JumpTo(const QModelIndex& error);
    void Say(const QString& text);

    Operations& mOperations;
    ModuleErrorTable mErrors;
    QString mPath; ///< of the opened file; empty = none
    CommandBar* mCommandBar;
    QAction* mUpload = nullptr;
    QAction* mLink = nullptr;
    QLineEdit* mTarget;
    CodeView* mCode;
    QTableView* mErrorView;
    QLabel* mResult;
};

} // namespace qnterm
