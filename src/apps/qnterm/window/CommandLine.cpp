#include "CommandLine.h"

#include "Version.h"

#include "serial/LineSettings.h"

#include <QCommandLineOption>
#include <QCommandLineParser>

namespace qnterm {
namespace {

constexpr int Usage = 2;

/// The options that take a value: their places in the record, and what they are for.
struct ValueOption {
    const char* name;
    const char* value;
    QString StartOptions::*place;
    const char* help;
};
constexpr ValueOption ValueOptions[] = {
    {"port", "ADDRESS", &StartOptions::port,
     "the port for this run: a device, usb:SERIAL, tcp://HOST:PORT, rfc2217://HOST:PORT, sim:MODEL "
     "(the virtual printer), or a number such as COM3"},
    {"settings", "FILE", &StartOptions::settings, "the settings file, instead of your own"},
    {"labels", "FOLDER", &StartOptions::labels,
     "where the virtual printer puts pictures of its labels"},
    {"watch", "SETTINGS", &StartOptions::watch,
     "listen at these settings, such as 9600,n,8,2, and send nothing"},
    {"trace", "FILE", &StartOptions::trace, "write what travels on the line, as JSON Lines"},
};

constexpr const char* Purpose =
    "A terminal for label printers that are programmed in Quorin, with their files, setup, program "
    "modules and labels beside it.";
constexpr const char* HelpHelp = "show this text and end";
constexpr const char* VersionHelp = "show the version and end";

StartRequest Ended(int status, const QString& text) {
    StartRequest request;
    request.ended = status;
    request.text = text;
    return request;
}

} // namespace

StartRequest ParseCommandLine(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QLatin1String(Purpose));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QLatin1String(HelpHelp));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QLatin1String(VersionHelp));
    for (const ValueOption& option : ValueOptions)
        parser.addOption(QCommandLineOption(QString::fromLatin1(option.name),
                                            QString::fromLatin1(option.help),
                                            QString::fromLatin1(option.value)));
    parser.addOption(version);
    parser.addOption(help);

    if (!parser.parse(arguments))
        return Ended(Usage, QStringLiteral("qnterm: %1\n").arg(parser.errorText()));
    if (parser.isSet(help)) // read before there is an application that would know its name
        return Ended(0, parser.helpText().replace(QStringLiteral("<executable_name>"),
                                                  QStringLiteral("qnterm")));
    if (parser.isSet(version))
        return Ended(0, QStringLiteral("qnterm %1\n").arg(QLatin1String(Version)));
    if (!parser.positionalArguments().isEmpty())
        return Ended(Usage, QStringLiteral("qnterm: what is \"%1\"? See qnterm --help.\n")
                                .arg(parser.positionalArguments().constFirst()));
    StartRequest request;
    for (const ValueOption& option : ValueOptions)
        request.options.*option.place = parser.value(QString::fromLatin1(option.name));
    const QString& watch = request.options.watch;
    if (!watch.isEmpty() && !qncomm::ParseLineSettings(watch.toStdString()))
        return Ended(
            Usage,
            QStringLiteral("qnterm: --watch %1: write settings such as 9600,n,8,2.\n").arg(watch));
    return request;
}

qncomm::Usage UsageOfProgram() {
    qncomm::Usage usage{"qnterm", Purpose};
    for (const ValueOption& option : ValueOptions)
        usage.options.push_back(
            {{std::string("--") + option.name}, {option.value, {}}, option.help});
    usage.options.push_back({{"-v", "--version"}, {}, VersionHelp});
    usage.options.push_back({{"-h", "--help"}, {}, HelpHelp});
    return usage;
}

} // namespace qnterm
