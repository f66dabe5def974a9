#include "ModuleBrowser.h"

#include "Ask.h"
#include "CodeView.h"
#include "CommandBar.h"
#include "FileView.h"
#include "ListLooks.h"
#include "Operations.h"

#include "common/Collection.h"
#include "common/QNError.h"
#include "control/QNComm.h"
#include "platform/DurableFile.h"
#include "platform/FileOpening.h"
#include "qt/Charset.h"

#include <QAction>
#include <QDropEvent>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QSplitter>
#include <QTableView>
#include <QVBoxLayout>

#include <cerrno>

namespace qnterm {
namespace {

/// Bytes; beyond any printer's memory.
constexpr std::uint64_t LargestModule = 4U << 20U;

QTableView* NewErrorView(ModuleErrorTable& errors) {
    auto* view = new QTableView;
    view->setModel(&errors);
    view->setAccessibleName(ModuleBrowser::tr("Errors that the printer found"));
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    LookLikeAList(*view, ModuleErrorTable::TextColumn);
    return view;
}

} // namespace

ModuleBrowser::ModuleBrowser(Operations& operations, QWidget* parent)
    : QWidget(parent),
      mOperations(operations),
      mCommandBar(new CommandBar(*this)),
      mTarget(new QLineEdit),
      mCode(new CodeView),
      mErrorView(NewErrorView(mErrors)),
      mResult(new QLabel) {
    setAcceptDrops(true);
    Build();
    connect(mErrorView, &QTableView::activated, this, &ModuleBrowser::JumpTo);
    connect(mErrorView->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &ModuleBrowser::JumpTo);
    connect(&mOperations, &Operations::RunningChanged, this, [this](bool running) {
        mCommandBar->setEnabled(!running);
        mCode->setReadOnly(running);
    });
    setFocusProxy(mCode);
}

void ModuleBrowser::SetHasPort(bool bHasPort) {
    mUpload->setEnabled(bHasPort);
    mLink->setEnabled(bHasPort);
}

void ModuleBrowser::Build() {
    mCommandBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto add = [this](const char* icon, const QString& text, const QString& tip,
                            const char* keys, auto run) {
        QAction* action =
            mCommandBar->Add(icon, text, tip, QKeySequence(QString::fromLatin1(keys)));
        connect(action, &QAction::triggered, this, run);
        return action;
    };
    add("open", tr("&Open…"), tr("Open a module's source file"), "Ctrl+O",
        &ModuleBrowser::ChooseFile);
    add("save", tr("&Save"), tr("Save the source file"), "Ctrl+S", &ModuleBrowser::SaveFile);
    mCommandBar->addSeparator();
    mUpload = add("send", tr("&Upload"), tr("Type the module into the printer and save it there"),
                  "F5", &ModuleBrowser::Upload);
    mLink = add("link", tr("&Link"), tr("Build the working program from modules of the printer"),
                "", &ModuleBrowser::Link);
    auto* name = new QLabel(tr("&Name on the printer:"));
    name->setBuddy(mTarget);
    mTarget->setPlaceholderText(tr("as the file is called"));
    mTarget->setAccessibleName(tr("Name on the printer"));
    auto* line = new QHBoxLayout;
    line->addWidget(name);
    line->addWidget(mTarget, 1);
    mCode->setAccessibleName(tr("Text of the module"));
    mCode->setPlaceholderText(tr("Open a source file, drop one here, or type a module."));
    mResult->setWordWrap(true);
    mResult->hide();
    mErrorView->hide();
    auto* splitter = new QSplitter(Qt::Vertical);
    splitter->addWidget(mCode);
    splitter->addWidget(mErrorView);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 0, 4, 4);
    layout->setSpacing(4);
    layout->addWidget(mCommandBar);
    layout->addLayout(line);
    layout->addWidget(splitter, 1);
    layout->addWidget(mResult);
}

void ModuleBrowser::ChooseFile() {
    AskOpenFile(this, tr("Open a module"), tr("Programs (*.prg *.PRG *.txt *.TXT);;All files (*)"),
                [this](const QString& path) { OpenFile(path); });
}

void ModuleBrowser::OpenFile(const QString& sPath) {
    std::string text;
    const qncomm::IoResult read =
        qncomm::ReadWholeFile(sPath.toStdString(), {.limit = LargestModule}, text);
    if (!read.Ok()) {
        Say(read.systemNumber == EFBIG
                ? tr("%1 is too large for a module.").arg(QFileInfo(sPath).fileName())
                : QString::fromStdString(read.text));
        return;
    }
    mPath = QFileInfo(sPath).absoluteFilePath();
    mCode->setPlainText(qncomm::FromLine(text));
    mTarget->setText(QFileInfo(sPath).fileName());
    mErrors.SetErrors(nullptr);
    mErrorView->hide();
    mResult->hide();
}

void ModuleBrowser::SaveFile() {
    if (mPath.isEmpty())
        SaveAs();
    else
        WriteTo(mPath);
}

void ModuleBrowser::SaveAs() {
    AskSaveFile(this, tr("Save the module"), mTarget->text(),
                [this](const QString& path) { WriteTo(path); });
}

/// Lines end in CR LF, as in the printer's own files.
void ModuleBrowser::WriteTo(const QString& path) {
    QString text = mCode->toPlainText();
    text.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
    const std::string bytes = qncomm::ToLine(text);
    const qncomm::IoResult saved = qncomm::SaveFile(path.toStdString(), bytes);
    if (saved.Ok()) mPath = path;
    Say(saved.Ok() ? tr("Saved as %1.").arg(path) : QString::fromStdString(saved.text));
}

void ModuleBrowser::Upload() {
    qncomm::ModuleUploadArgs args;
    args.sTargetPath = qncomm::ToLine(mTarget->text().trimmed());
    args.sSourcePath = mPath.isEmpty() ? args.sTargetPath : mPath.toStdString();
    args.sModuleText =
        qncomm::ToLine(mCode->toPlainText().replace(QLatin1Char('\n'), QLatin1String("\r\n")));
    if (args.sSourcePath.empty() || args.sModuleText.empty()) {
        Say(args.sModuleText.empty() ? tr("There is no text to upload.")
                                     : tr("Say what the module is called on the printer."));
        return;
    }
    std::shared_ptr<qncomm::ModuleErrors> errors;
    const QString name = QFileInfo(QString::fromStdString(args.sSourcePath)).fileName();
    const bool done = mOperations.Run(tr("Upload %1").arg(name), [&](qncomm::QNComm& control) {
        errors = control.ModuleUpload(args);
    });
    if (errors) ShowErrors(errors, qncomm::FromLine(args.sTargetPath));
    if (done) emit Uploaded();
}

void ModuleBrowser::ShowErrors(const std::shared_ptr<qncomm::ModuleErrors>& errors,
                               const QString& target) {
    mErrors.SetErrors(errors);
    mErrorView->setVisible(!errors->IsEmpty());
    if (errors->IsEmpty()) {
        mCode->GoToLine(0);
        Say(tr("No errors. Saved on the printer as %1.").arg(target));
        return;
    }
    Say(errors->Count() == 1
            ? tr("The printer found an error and did not save the module.")
            : tr("The printer found %1 errors and did not save the module.").arg(errors->Count()));
    mErrorView->selectRow(0);
}

void ModuleBrowser::JumpTo(const QModelIndex& error) {
    if (error.isValid()) mCode->GoToLine(mErrors.LineAt(error.row()));
}

void ModuleBrowser::Link() {
    AskText(this, tr("Link modules"),
            tr("Modules on the printer, in their order, separated by blanks:"), mTarget->text(),
            [this](const QString& answer) {
                qncomm::Collection<std::string> modules;
                for (const QString& name : answer.split(QLatin1Char(' '), Qt::SkipEmptyParts))
                    modules.Add(qncomm::ToLine(name));
                const bool linked =
                    mOperations.Run(tr("Link the program"), [&](qncomm::QNComm& control) {
                        if (!control.ProgramLink(modules))
                            throw qncomm::QNError(0, "qnterm",
                                                  "The printer did not take the modules.");
                    });
                if (linked) Say(tr("The working program is linked from %1.").arg(answer));
            });
}

void ModuleBrowser::Say(const QString& text) {
    mResult->setText(text);
    mResult->show();
}

void ModuleBrowser::dragEnterEvent(QDragEnterEvent* event) {
    if (!LocalFilesOf(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void ModuleBrowser::dropEvent(QDropEvent* event) {
    const QStringList files = LocalFilesOf(event->mimeData());
    if (!files.isEmpty()) OpenFile(files.front());
}

} // namespace qnterm
