#pragma once

#include "DeviceList.h"

#include "common/RegSettings.h"

#include <QString>

#include <memory>
#include <string>

namespace qnterm {

/// A file of this machine that was sent to the printer.
struct SentFile {
    QString path;          ///< empty = nothing is known of it
    bool unchanged = true; ///< it is there and is as it was when it was sent
};

/// Remembers which fonts and images were sent from which file of this machine, so that they can be
/// shown: a printer lists their names and cannot give their contents back.
class SentFiles {
  public:
    explicit SentFiles(std::shared_ptr<qncomm::RegSettings> store);

    /// The file has been sent and is kept under its own name.
    void Remember(DeviceKind kind, const QString& sPath);
    /// Forgets what the printer removed.
    void Forget(DeviceKind kind, const std::string& sName);
    /// What the font or image of that name was sent from.
    SentFile Find(DeviceKind kind, const std::string& sName) const;

  private:
    std::shared_ptr<qncomm::RegSettings> mStore;
};

} // namespace qnterm
