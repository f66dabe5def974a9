#pragma once

#include "DeviceList.h"
#include "SentFiles.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <string>
#include <vector>

class QWidget;

namespace qncomm {
class QNComm;
}

namespace qnterm {

class Operations;

/// What a user does with the files, fonts and images of the printer: asks what is to be asked and
/// runs the control's member for it.
class FileActions final : public QObject {
    Q_OBJECT

  public:
    /// All outlive this object; dialogs are shown over the window.
    FileActions(Operations& operations, SentFiles& sent, QWidget* window);

    // Each takes the device and the names of its files.

    void Copy(const DeviceListing& device, const std::vector<std::string>& names);
    void Rename(const DeviceListing& device, const std::string& sName);
    void Delete(const DeviceListing& device, const std::vector<std::string>& names);
    /// Makes a file the working program and starts it.
    void Start(const DeviceListing& device, const std::string& sName);
    /// Fetches files by Kermit into this machine's.
    void Save(const DeviceListing& device, const std::vector<std::string>& names);
    /// Asks for files of this machine and sends them.
    void Send(const DeviceListing& device);
    /// Sends files by Kermit under their own names; images and fonts are installed instead.
    void SendFiles(const DeviceListing& device, const QStringList& paths);
    /// Prints an image, or a line of text in a font.
    void Print(const DeviceListing& device, const std::string& sName);

  signals:
    /// The contents of the printer's devices have changed.
    void Changed();

  private:
    using Work = std::function<void(qncomm::QNComm&)>;

    bool Run(const DeviceListing& device, const QString& title, const Work& work);
    void SendOne(const DeviceListing& device, const QString& path, qncomm::QNComm& control);

    Operations& mOperations;
    SentFiles& mSent;
    QWidget* mWindow;
};

} // namespace qnterm
