// What a diagnosis comes to: a table of causes, of which the first that holds is it.

#include "diagnosis/Diagnosis.h"

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

constexpr std::string_view RemoteScheme = "rfc2217://";

/// The facts of a port that was looked at; of a port of another machine there are none of ours.
struct Facts {
    explicit Facts(const Examined& examined)
        : port(ShellWord(examined.port)),
          machine(examined.machine.value_or(MachineFacts{})),
          line(examined.line.value_or(LineFacts{})),
          local(examined.machine && !machine.path.empty()),
          chosen(examined.line.has_value()) {}

    bool Opens(IoStatus status) const { return line.opening.status == status; }
    bool Says(LineTalk talk) const { return line.heard.talk == talk; }
    bool Answers(Answer answer) const { return line.answer == answer; }
    bool Found() const { return Answers(Answer::Printer); }
    /// Opened, and what was looked for is not there.
    bool NotFound() const { return line.opening.Ok() && !Found(); }
    /// The service that has this port, or may well have it.
    const PortService* Service() const {
        return machine.services.empty() ? nullptr : machine.services.data();
    }
    std::string OnPort(const std::string& command) const {
        return "qnctl " + command + " --port " + port;
    }
    std::string Again() const { return "qnctl doctor " + port; }

    std::string port; ///< as a shell takes it
    MachineFacts machine;
    LineFacts line;
    bool local;  ///< a device of this machine
    bool chosen; ///< there is a port
};

struct Cause {
    std::string_view name;
    CommandEnd end;
    bool (*holds)(const Facts&);
    std::string (*text)(const Facts&);
    std::string (*command)(const Facts&);
    bool fixable = false;
};

constexpr auto Unavailable = CommandEnd::PortUnavailable;
constexpr auto NoPrinter = CommandEnd::NoPrinter;

/// Why a port does not open.
constexpr std::array NotOpened{
    Cause{"no-port", CommandEnd::Usage, [](const Facts& f) { return !f.chosen; },
          [](const Facts& f) -> std::string {
              return f.machine.devices.empty()
                         ? "No port is named, and this machine has no serial device."
                         : "No port is named, and none is configured.";
          },
          [](const Facts& f) {
              return f.machine.devices.empty() ? std::string("qnctl ports")
                                               : "qnctl doctor " + f.machine.devices.front().path;
          }},
    Cause{"taken-adapter", Unavailable,
          [](const Facts& f) {
              return f.local && f.Opens(IoStatus::Missing) && f.Service() != nullptr
                     && f.Service()->name == "brltty";
          },
          [](const Facts& f) {
              return f.Service()->name + " takes USB adapters, and " + f.machine.path
                     + " is gone; plug it in again afterwards.";
          },
          [](const Facts& f) { return f.Service()->cure; }},
    Cause{"unplugged", Unavailable,
          [](const Facts& f) {
              return f.local && f.Opens(IoStatus::Missing) && f.machine.messages
                     && !f.machine.messages->empty() && TellsOfLoss(f.machine.messages->back());
          },
          [](const Facts& f) {
              return "The adapter of " + f.machine.path + " was unplugged. Plug it in again.";
          },
          [](const Facts& f) { return f.Again(); }},
    Cause{"missing", Unavailable,
          [](const Facts& f) { return f.local && f.Opens(IoStatus::Missing); },
          [](const Facts& f) {
              return "There is no " + f.machine.path + ": " + f.line.opening.text + ".";
          },
          [](const Facts&) -> std::string { return "qnctl ports"; }},
    Cause{"login", Unavailable,
          [](const Facts& f) {
              return !f.line.opening.Ok() && f.Service() != nullptr && f.Service()->owns;
          },
          [](const Facts& f) {
              return f.Service()->name + " has the port: it " + f.Service()->does + ".";
          },
          [](const Facts& f) { return f.Service()->cure; }},
    Cause{
        "busy", Unavailable, [](const Facts& f) { return f.Opens(IoStatus::Busy); },
        [](const Facts& f) { return "The port is " + f.line.opening.text + ". End that program."; },
        [](const Facts& f) {
            const auto& users = f.machine.users.found;
            return users.empty() ? "sudo fuser -v " + f.port
                                 : "kill " + std::to_string(users.front().process);
        }},
    Cause{"not-yet-in-group", Unavailable,
          [](const Facts& f) {
              return f.Opens(IoStatus::Denied) && f.machine.access == DeviceAccess::NotYetInGroup;
          },
          [](const Facts& f) {
              return f.machine.user + " was added to the group " + f.machine.group
                     + " after this login. Log in again, or begin a shell with the group.";
          },
          [](const Facts& f) { return "newgrp " + f.machine.group; }},
    Cause{"not-in-group", Unavailable,
          [](const Facts& f) {
              return f.Opens(IoStatus::Denied) && f.machine.access == DeviceAccess::NotInGroup;
          },
          [](const Facts& f) {
              return f.machine.user + " is not in the group " + f.machine.group
                     + ", which may open " + f.machine.path + ". Log in again afterwards.";
          },
          [](const Facts& f) {
              return "sudo usermod -aG " + f.machine.group + " " + f.machine.user;
          }},
    Cause{"denied", Unavailable, [](const Facts& f) { return f.Opens(IoStatus::Denied); },
          [](const Facts& f) {
              return f.machine.user + " may not open " + f.port + ": " + f.line.opening.text + ".";
          },
          [](const Facts& f) { return "sudo setfacl -m u:" + f.machine.user + ":rw " + f.port; }},
    Cause{"not-serial", Unavailable,
          [](const Facts& f) { return f.local && f.Opens(IoStatus::Unsupported); },
          [](const Facts& f) {
              return f.machine.path + " does not do: " + f.line.opening.text + ".";
          },
          [](const Facts&) -> std::string { return "qnctl ports"; }},
    Cause{
        "not-rfc2217", Unavailable,
        [](const Facts& f) {
            return f.port.starts_with(RemoteScheme)
                   && f.line.opening.text.find("RFC 2217") != std::string::npos;
        },
        [](const Facts& f) {
            return "The port does not open: " + f.line.opening.text + ". It may be a plain socket.";
        },
        [](const Facts& f) { return "qnctl doctor tcp://" + f.port.substr(RemoteScheme.size()); }},
    Cause{"no-host", Unavailable, [](const Facts& f) { return f.Opens(IoStatus::Missing); },
          [](const Facts& f) {
              return "There is no such place: " + f.line.opening.text + ". Correct the address.";
          },
          [](const Facts&) -> std::string { return "qnctl ports"; }},
    Cause{"unreachable", Unavailable, [](const Facts& f) { return !f.line.opening.Ok(); },
          [](const Facts& f) {
              return "The port does not open: " + f.line.opening.text
                     + ". See that the device server is switched on.";
          },
          [](const Facts& f) { return f.Again(); }},
};

/// What is found on an open line, and why no printer answers on it.
constexpr std::array Opened{
    Cause{"lost", Unavailable, [](const Facts& f) { return !f.line.loss.empty(); },
          [](const Facts& f) {
              return "The line went away: " + f.line.loss + ". See to plug and cable.";
          },
          [](const Facts& f) { return f.Again(); }},
    Cause{"healthy", CommandEnd::Healthy, [](const Facts& f) { return f.Found(); },
          [](const Facts& f) {
              return "The printer answers: " + f.line.model + " at " + f.line.found + ".";
          },
          [](const Facts& f) { return f.OnPort("info"); }},
    Cause{"zmodem", NoPrinter, [](const Facts& f) { return f.Says(LineTalk::ZModemReceiver); },
          [](const Facts&) -> std::string { return "The printer waits for a file by ZModem."; },
          [](const Facts& f) { return f.Again() + " --fix"; }, true},
    Cause{"kermit", NoPrinter, [](const Facts& f) { return f.Says(LineTalk::KermitReceiver); },
          [](const Facts&) -> std::string { return "The printer waits for a file by Kermit."; },
          [](const Facts& f) { return f.Again() + " --fix"; }, true},
    Cause{"asking", NoPrinter,
          [](const Facts& f) { return f.Says(LineTalk::Question) || f.Answers(Answer::Taken); },
          [](const Facts&) -> std::string {
              return "A program runs on the printer and waits for its input. Answer it, or stop "
                     "the program.";
          },
          [](const Facts& f) { return f.Again() + " --fix"; }, true},
    Cause{"running", NoPrinter, [](const Facts& f) { return f.Says(LineTalk::Text); },
          [](const Facts& f) {
              return "A program runs on the printer, at " + f.line.heardAt
                     + ". Stop it to talk to the printer.";
          },
          [](const Facts& f) { return f.OnPort("program stop --as " + f.line.heardAt); }, true},
    Cause{"shared", NoPrinter,
          [](const Facts& f) { return f.NotFound() && !f.machine.users.found.empty(); },
          [](const Facts& f) {
              return "The port is " + f.machine.users.found.front().Text()
                     + ", too, and what the printer says goes there. End that program.";
          },
          [](const Facts& f) {
              return "kill " + std::to_string(f.machine.users.found.front().process);
          }},
    Cause{"grabbed", NoPrinter,
          [](const Facts& f) { return f.NotFound() && f.Service() != nullptr; },
          [](const Facts& f) {
              return "No printer answers, and " + f.Service()->name + " runs: it "
                     + f.Service()->does + ".";
          },
          [](const Facts& f) { return f.Service()->cure; }},
    Cause{"load", NoPrinter, [](const Facts& f) { return f.NotFound() && f.line.load > 0; },
          [](const Facts& f) {
              return "No printer answers, and a load of " + std::to_string(f.line.load)
                     + " bytes broke off here: it may wait for the rest.";
          },
          [](const Facts& f) { return f.OnPort("info"); }},
    Cause{"echo", NoPrinter,
          [](const Facts& f) { return f.Answers(Answer::Echo) || f.Says(LineTalk::Echo); },
          [](const Facts&) -> std::string {
              return "What is sent comes back, and nothing else: a loop-back plug or a bridged "
                     "cable. Connect the printer in its place.";
          },
          [](const Facts& f) { return f.Again(); }},
    Cause{"half", CommandEnd::Error, [](const Facts& f) { return f.Answers(Answer::Half); },
          [](const Facts&) -> std::string {
              return "A printer answers, and not as it should: its echo is off, it answers later "
                     "than a search waits, or the line loses bytes. Switch it off and on.";
          },
          [](const Facts& f) { return f.Again(); }},
    Cause{"other-device", NoPrinter, [](const Facts& f) { return f.Answers(Answer::Text); },
          [](const Facts& f) {
              return "What answers is no such printer: \"" + f.line.answerText + "\".";
          },
          [](const Facts& f) { return f.OnPort("watch"); }},
    Cause{"noise", NoPrinter,
          [](const Facts& f) { return f.Says(LineTalk::Noise) || f.Answers(Answer::Noise); },
          [](const Facts&) -> std::string {
              return "What comes is no text at any rate and format that is searched: another "
                     "parity or rate, or a bad cable.";
          },
          [](const Facts& f) { return f.OnPort("watch --hex"); }},
    Cause{"switched-off", NoPrinter, [](const Facts& f) { return f.line.dsr == false; },
          [](const Facts&) -> std::string {
              return "Nothing answers and DSR is not held: the printer is switched off or not "
                     "connected.";
          },
          [](const Facts& f) { return f.Again(); }},
    Cause{"silent", NoPrinter, [](const Facts&) { return true; },
          [](const Facts&) -> std::string {
              return "Nothing answers at any rate and format. See that the printer is switched on, "
                     "and that the cable is the right one and in its place.";
          },
          [](const Facts& f) { return f.OnPort("connect"); }},
};

bool NeedsQuotes(char c) {
    constexpr std::string_view plain = "/:.,_-+@=%[]";
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    return !letter && plain.find(c) == std::string_view::npos;
}

} // namespace

std::string ShellWord(const std::string& sText) {
    if (!sText.empty() && std::ranges::none_of(sText, NeedsQuotes)) return sText;
    std::string quoted = "'";
    for (const char c : sText)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

Verdict VerdictOf(const Examined& examined) {
    const Facts facts(examined);
    const auto holds = [&](const Cause& cause) { return cause.holds(facts); };
    const Cause* cause = facts.chosen && facts.line.opening.Ok()
                             ? std::ranges::find_if(Opened, holds)
                             : std::ranges::find_if(NotOpened, holds);
    return {std::string(cause->name), cause->end, cause->text(facts), cause->command(facts),
            cause->fixable};
}

} // namespace qncomm
