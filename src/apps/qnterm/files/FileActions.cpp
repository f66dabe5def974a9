#include "FileActions.h"

#include "Ask.h"
#include "Operations.h"

#include "common/Collection.h"
#include "common/QNError.h"
#include "common/SafeText.h"
#include "control/QNComm.h"
#include "qt/Charset.h"

#include <QDir>
#include <QFileInfo>
#include <QWidget>

namespace qnterm {
namespace {

/// A file's whole name on the printer.
std::string PathOf(const DeviceListing& device, const std::string& name) {
    return device.name + name;
}

QString Shown(const DeviceListing& device, const std::string& name) {
    return qncomm::FromLine(device.kind == DeviceKind::Files ? PathOf(device, name) : name);
}

/// How a file of the printer is called on this machine.
QString NameHere(const std::string& name) {
    return QString::fromStdString(qncomm::FileNameFromPrinter(name));
}

/// "c:A.PRG", or "3 files".
QString Several(const DeviceListing& device, const std::vector<std::string>& names) {
    if (names.size() == 1) return Shown(device, names.front());
    return FileActions::tr("%1 files").arg(names.size());
}

QString FilterFor(DeviceKind kind) {
    switch (kind) {
    case DeviceKind::Fonts:
        return FileActions::tr("TrueType fonts (*.ttf *.TTF);;All files (*)");
    case DeviceKind::Images:
        return FileActions::tr("PCX images (*.pcx *.PCX);;All files (*)");
    default:
        return {};
    }
}

/// The name on the printer that a typed one stands for: with the device where it names none.
std::string Target(const DeviceListing& device, const QString& typed) {
    const std::string name = qncomm::ToLine(typed);
    return name.find(':') == std::string::npos ? PathOf(device, name) : name;
}

} // namespace

FileActions::FileActions(Operations& operations, SentFiles& sent, QWidget* window)
    : QObject(window), mOperations(operations), mSent(sent), mWindow(window) {}

/// Runs an operation on what the listing names, unless that is a former printer's, and tells that
/// the devices may have changed, whatever became of it.
bool FileActions::Run(const DeviceListing& device, const QString& title, const Work& work) {
    const bool done = mOperations.RunOn(device.generation, title, work);
    emit Changed();
    return done;
}

void FileActions::Copy(const DeviceListing& device, const std::vector<std::string>& names) {
    const QString first = qncomm::FromLine(names.front());
    const bool one = names.size() == 1;
    AskText(mWindow, tr("Copy"),
            one ? tr("Copy %1 to (a device, a name, or both):").arg(Shown(device, names.front()))
                : tr("Copy %1 files to the device:").arg(names.size()),
            one ? Shown(device, names.front()) : qncomm::FromLine(device.name),
            [this, device, names](const QString& answer) {
                const bool onlyDevice = answer.endsWith(QLatin1Char(':'));
                if (names.size() > 1 && !onlyDevice) return;
                Run(device, tr("Copy %1").arg(Several(device, names)),
                    [&](qncomm::QNComm& control) {
                        for (const std::string& name : names)
                            control.CopyFile(PathOf(device, name),
                                             onlyDevice ? qncomm::ToLine(answer) + name
                                                        : Target(device, answer));
                    });
            });
}

void FileActions::Rename(const DeviceListing& device, const std::string& sName) {
    AskText(mWindow, tr("Rename"), tr("New name of %1:").arg(Shown(device, sName)),
            qncomm::FromLine(sName), [this, device, sName](const QString& answer) {
                const std::string target = Target(device, answer);
                if (target == PathOf(device, sName)) return;
                Run(device, tr("Rename %1").arg(Shown(device, sName)),
                    [&](qncomm::QNComm& control) {
                        control.RenameFile(PathOf(device, sName), target);
                    });
            });
}

void FileActions::Delete(const DeviceListing& device, const std::vector<std::string>& names) {
    AskBefore(mWindow, tr("Delete %1 from the printer?").arg(Several(device, names)),
              tr("This cannot be undone."), tr("&Delete"), [this, device, names] {
                  Run(device, tr("Delete %1").arg(Several(device, names)),
                      [&](qncomm::QNComm& control) {
                          for (const std::string& name : names) {
                              if (device.kind == DeviceKind::Images)
                                  control.RemoveImage(name);
                              else
                                  control.KillQN(PathOf(device, name));
                              mSent.Forget(device.kind, name);
                          }
                      });
              });
}

void FileActions::Start(const DeviceListing& device, const std::string& sName) {
    AskBefore(mWindow, tr("Run %1?").arg(Shown(device, sName)),
              tr("It takes the place of the program in the printer's working memory."), tr("&Run"),
              [this, device, sName] {
                  Run(device, tr("Run %1").arg(Shown(device, sName)), [&](qncomm::QNComm& control) {
                      qncomm::Collection<std::string> modules;
                      modules.Add(PathOf(device, sName));
                      if (!control.ProgramLink(modules))
                          throw qncomm::QNError(0, "qnterm",
                                                "The printer could not load the file as a "
                                                "program.");
                      control.RunProgram();
                  });
              });
}

void FileActions::Save(const DeviceListing& device, const std::vector<std::string>& names) {
    const auto fetch = [this, device](const std::vector<std::string>& files,
                                      const std::function<QString(const std::string&)>& place) {
        Run(device, tr("Save %1").arg(Several(device, files)), [&](qncomm::QNComm& control) {
            for (const std::string& name : files)
                control.KermitDownload(PathOf(device, name), place(name).toStdString());
        });
    };
    if (names.size() == 1) {
        AskSaveFile(mWindow, tr("Save %1").arg(Shown(device, names.front())),
                    NameHere(names.front()), [fetch, names](const QString& path) {
                        fetch(names, [&](const std::string&) { return path; });
                    });
        return;
    }
    AskFolder(
        mWindow, tr("Save %1 files in").arg(names.size()), [fetch, names](const QString& folder) {
            fetch(names,
                  [&](const std::string& name) { return QDir(folder).filePath(NameHere(name)); });
        });
}

void FileActions::Send(const DeviceListing& device) {
    AskOpenFiles(mWindow, tr("Send to %1").arg(TitleOf(device)), FilterFor(device.kind),
                 [this, device](const QStringList& paths) { SendFiles(device, paths); });
}

void FileActions::SendFiles(const DeviceListing& device, const QStringList& paths) {
    const QString what =
        paths.size() == 1 ? QFileInfo(paths.front()).fileName() : tr("%1 files").arg(paths.size());
    Run(device, tr("Send %1").arg(what), [&](qncomm::QNComm& control) {
        for (const QString& path : paths)
            SendOne(device, path, control);
    });
}

/// Puts a file where files of the device's kind belong.
void FileActions::SendOne(const DeviceListing& device, const QString& path,
                          qncomm::QNComm& control) {
    const std::string host = path.toStdString();
    constexpr bool keptOverRestarts = true;
    switch (device.kind) {
    case DeviceKind::Fonts:
        control.InstallFont(host, keptOverRestarts);
        break;
    case DeviceKind::Images:
        control.InstallImage(host, keptOverRestarts);
        break;
    case DeviceKind::Files:
        control.KermitUpload(host, PathOf(device, qncomm::ToLine(QFileInfo(path).fileName())));
        return;
    }
    mSent.Remember(device.kind, path);
}

void FileActions::Print(const DeviceListing& device, const std::string& sName) {
    if (device.kind == DeviceKind::Images) {
        Run(device, tr("Print %1").arg(qncomm::FromLine(sName)),
            [&](qncomm::QNComm& control) { control.PrintImage(sName); });
        return;
    }
    AskText(mWindow, tr("Print"), tr("Text to print in %1:").arg(qncomm::FromLine(sName)),
            tr("The quick brown fox"), [this, device, sName](const QString& text) {
                Run(device, tr("Print in %1").arg(qncomm::FromLine(sName)),
                    [&](qncomm::QNComm& control) {
                        qncomm::PrintFontArgs args;
                        args.sFontName = sName;
                        args.sText = qncomm::ToLine(text);
                        control.PrintFont(args);
                    });
            });
}

} // namespace qnterm
