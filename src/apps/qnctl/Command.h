#pragma once

#include "Outcome.h"

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qnctl {

class Session;

/// How far a session must have come before a command's own work begins.
enum class Needs {
    Nothing, ///< settings and port numbers
    Port,    ///< the chosen port, not opened yet
    Printer, ///< the chosen port claimed, with a printer found on it
};

/// One row of the program's table of commands. A name of two words is a command of a group.
struct Command {
    std::string name;
    std::string help;
    Needs needs = Needs::Printer;
    /// Declares the command's own arguments; empty when it has none.
    std::function<void(CLI::App&)> declare;
    std::function<Outcome(Session&)> run;
};

using CommandTable = std::vector<Command>;

/// The families, each in a file of its own.
CommandTable PortCommands();
CommandTable ConnectionCommands();
CommandTable DoctorCommands();
CommandTable LineCommands();
CommandTable WatchCommands();
CommandTable VerbCommands();
CommandTable TravelCommands();
CommandTable SyncCommands();
CommandTable FileCommands();
CommandTable ProgramCommands();
CommandTable SetupCommands();
CommandTable FontCommands();
CommandTable ImageCommands();
CommandTable TransferCommands();
CommandTable TraceCommands();
CommandTable KeyCommands();
CommandTable MacroCommands();
CommandTable CallCommands();

/// All commands in the order of the help text.
CommandTable AllCommands();

} // namespace qnctl
