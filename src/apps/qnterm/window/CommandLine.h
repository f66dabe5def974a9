#pragma once

#include "usage/Usage.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace qnterm {

/// What the program was started with.
struct StartOptions {
    QString port;     ///< an address or a port number; empty = the configured port
    QString settings; ///< the settings file; empty = the user's own
    QString labels;   ///< where the virtual printer puts its labels; empty = a scratch folder
    QString watch;    ///< settings at which it only listens; empty = it looks for the printer
    QString trace;    ///< where to write what travels on the line; empty = nowhere
};

/// What became of a command line.
struct StartRequest {
    StartOptions options;
    /// The program ends at once with this status, after printing the text: 0 for --help and
    /// --version on the standard output, 2 for a wrong command line on the error stream.
    std::optional<int> ended;
    QString text;
};

/// Reads the arguments, the program's name first. Needs no display.
StartRequest ParseCommandLine(const QStringList& arguments);

/// What the help tells of the program.
qncomm::Usage UsageOfProgram();

} // namespace qnterm
