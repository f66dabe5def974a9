#include "SentFiles.h"

#include "common/QNError.h"
#include "qt/Charset.h"

#include <QDateTime>
#include <QFileInfo>

#include <utility>

namespace qnterm {
namespace {

std::string SectionOf(DeviceKind kind) {
    return kind == DeviceKind::Fonts ? "qnterm sent fonts" : "qnterm sent images";
}

/// What tells one state of a file from another.
QString StateOf(const QFileInfo& file) {
    return QStringLiteral("%1 %2").arg(file.size()).arg(file.lastModified().toMSecsSinceEpoch());
}

} // namespace

SentFiles::SentFiles(std::shared_ptr<qncomm::RegSettings> store) : mStore(std::move(store)) {}

void SentFiles::Remember(DeviceKind kind, const QString& sPath) {
    const QFileInfo file(sPath);
    const QString value = StateOf(file) + QLatin1Char('|') + file.absoluteFilePath();
    try {
        mStore->WriteValue(SectionOf(kind), qncomm::ToLine(file.fileName().toUpper()),
                           value.toStdString());
    } catch (const qncomm::QNError&) { // NOLINT(bugprone-empty-catch): there is no picture then
    }
}

void SentFiles::Forget(DeviceKind kind, const std::string& sName) {
    try {
        mStore->WriteValue(SectionOf(kind), qncomm::ToLine(qncomm::FromLine(sName).toUpper()), "");
    } catch (const qncomm::QNError&) { // NOLINT(bugprone-empty-catch): an old picture stays
    }
}

SentFile SentFiles::Find(DeviceKind kind, const std::string& sName) const {
    const QString value = QString::fromStdString(
        mStore->ReadValue(SectionOf(kind), qncomm::ToLine(qncomm::FromLine(sName).toUpper()), ""));
    const qsizetype bar = value.indexOf(QLatin1Char('|'));
    if (bar < 0) return {};
    SentFile sent;
    sent.path = value.mid(bar + 1);
    const QFileInfo file(sent.path);
    sent.unchanged = file.exists() && StateOf(file) == value.left(bar);
    return sent;
}

} // namespace qnterm
