#include "CommandLine.h"
#include "MainWindow.h"
#include "Version.h"

#include "common/SafeText.h"
#include "platform/Interrupt.h"
#include "platform/StandardStreams.h"
#include "trace/JsonLinesTrace.h"
#include "usage/ShellAnswer.h"

#include <QApplication>
#include <QSocketNotifier>

#include <iostream>
#include <memory>
#include <string>

namespace {

constexpr int UsageStatus = 2;

/// A line on the error stream, whatever a file or a path in it holds.
void Complain(std::string_view what) {
    std::cerr << "qnterm: " << qncomm::WithoutControls(what) << std::endl;
}

QStringList ArgumentsOf(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments += QString::fromLocal8Bit(argv[i]);
    return arguments;
}

std::shared_ptr<qncomm::FileSettings> StoreFor(const qnterm::StartOptions& options) {
    return std::make_shared<qncomm::FileSettings>(options.settings.isEmpty()
                                                      ? qncomm::FileSettings::DefaultPath()
                                                      : options.settings.toStdString(),
                                                  [](std::string_view line) { Complain(line); });
}

/// What travels on the line is written there; outlives the application, as the control may say
/// something to the printer until the very end. Null when the file cannot be written, after a line
/// to the user.
std::unique_ptr<qncomm::JsonLinesTrace> TraceTo(const std::string& path) {
    auto trace = std::make_unique<qncomm::JsonLinesTrace>(path);
    if (trace->Result().Ok()) return trace;
    Complain("--trace " + trace->Result().text);
    return nullptr;
}

int Show(int argc, char** argv, const qnterm::StartOptions& options, qncomm::TraceSink* trace) {
    qncomm::Interrupt interrupt; // before there are other threads
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("qnterm"));
    QApplication::setApplicationDisplayName(QStringLiteral("QNComm Terminal"));
    QApplication::setDesktopFileName(QStringLiteral("io.korvane.qnterm"));
    qnterm::MainWindow window(options, StoreFor(options), trace);
    // A window that is hidden while it still ends what runs is no reason to leave.
    QApplication::setQuitOnLastWindowClosed(false);
    QObject::connect(&window, &qnterm::MainWindow::Closed, &application, &QApplication::quit,
                     Qt::QueuedConnection);
    // A signal or the end of the session is the window's close button: what runs is cancelled, the
    // printer is left at its prompt, and the port is given back.
    const QSocketNotifier notice(interrupt.Handle(), QSocketNotifier::Read);
    QObject::connect(&notice, &QSocketNotifier::activated, &window, [&] {
        if (interrupt.Raised()) window.close();
    });
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &window,
                     [&window] { window.close(); });
    window.show();
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    qncomm::PrepareStandardStreams();
    if (const auto asked =
            qncomm::AnswerShell({argv + 1, argv + argc}, qnterm::UsageOfProgram, qnterm::Version)) {
        std::cout << asked->text << std::flush;
        return asked->status;
    }
    const qnterm::StartRequest request = qnterm::ParseCommandLine(ArgumentsOf(argc, argv));
    if (request.ended) {
        (*request.ended == 0 ? std::cout : std::cerr) << request.text.toStdString();
        return *request.ended;
    }
    const std::string path = request.options.trace.toStdString();
    const auto trace = path.empty() ? nullptr : TraceTo(path);
    if (!path.empty() && !trace) return UsageStatus;
    return Show(argc, argv, request.options, trace.get());
}
