#include "qt/QtLauncher.h"

#include "qt/Charset.h"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <system_error>

namespace qncomm {
namespace {

LaunchResult Failure(LaunchResult::Kind kind, std::errc error, const std::string& program) {
    const std::error_code code = std::make_error_code(error);
    return {kind, code.value(), program + ": " + code.message()};
}

/// The program's file; empty when there is none.
QString FileOf(const QString& program) {
    if (program.contains(u'/')) return QFileInfo(program).isFile() ? program : QString();
    return QStandardPaths::findExecutable(program);
}

} // namespace

LaunchResult QtLauncher::Launch(const LaunchRequest& request) {
    const QString file = FileOf(FromHost(request.program));
    if (file.isEmpty())
        return Failure(LaunchResult::Kind::NotFound, std::errc::no_such_file_or_directory,
                       request.program);
    if (!QFileInfo(file).isExecutable())
        return Failure(LaunchResult::Kind::Refused, std::errc::permission_denied, request.program);
    if (!request.folder.empty() && !QFileInfo(FromHost(request.folder)).isDir())
        return Failure(LaunchResult::Kind::Refused, std::errc::not_a_directory, request.folder);
    QStringList arguments;
    for (const std::string& argument : request.arguments)
        arguments << FromHost(argument);
    QProcess process;
    process.setProgram(QFileInfo(file).absoluteFilePath());
    process.setArguments(arguments);
    if (!request.folder.empty()) process.setWorkingDirectory(FromHost(request.folder));
    if (process.startDetached()) return {};
    return {LaunchResult::Kind::Refused, 0, request.program + ": " + ToHost(process.errorString())};
}

} // namespace qncomm
