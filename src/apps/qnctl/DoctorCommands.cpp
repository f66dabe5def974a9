#include "Command.h"
#include "GivenSettings.h"
#include "Session.h"
#include "Version.h"

#include "diagnosis/Diagnosis.h"
#include "diagnosis/LineExamination.h"
#include "platform/DurableFile.h"
#include "serial/LineSettings.h"
#include "serial/PortAddress.h"
#include "serial/SerialDevices.h"
#include "trace/TraceReader.h"
#include "trace/TraceRedaction.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>
#include <vector>

#include <sys/utsname.h>

namespace qnctl {
namespace {

using qncomm::Check;
using qncomm::Examined;
using qncomm::Verdict;

struct DoctorArguments {
    std::string address;
    std::string as;
    bool fix = false;
    std::string file; ///< of support
};

/// What travels while a line is examined, as a file of support holds it.
class KeptTrace final : public qncomm::TraceSink {
  public:
    explicit KeptTrace(qncomm::TraceSink* next) : mNext(next) {}

    void Record(std::int64_t lMs, qncomm::TraceKind kind, std::string_view sBytes) override {
        if (mNext != nullptr) mNext->Record(lMs, kind, sBytes);
        if (!mStart) mStart = lMs;
        const qncomm::TraceRecord record{
            .line = 0, .ms = lMs - *mStart, .kind = kind, .bytes = std::string(sBytes)};
        for (const qncomm::TraceRecord& kept : mRedaction.Redact(record))
            mRecords.push_back(kept);
    }

    /// The redacted records, each as a trace has it.
    Json Document() const {
        Json lines = Json::array();
        for (const qncomm::TraceRecord& record : mRecords)
            lines.push_back(Json::parse(qncomm::TraceLineOf(record)));
        return lines;
    }

  private:
    qncomm::TraceSink* mNext;
    std::optional<std::int64_t> mStart;
    qncomm::TraceRedaction mRedaction;
    std::vector<qncomm::TraceRecord> mRecords;
};

/// What is known of a port, and what was done about it.
struct Diagnosis {
    Examined examined;
    Verdict verdict;
    std::string fixed;          ///< what --fix did; empty when there was nothing to do
    Json trace = Json::array(); ///< what travelled meanwhile, redacted
};

Diagnosis Examine(Session& session, const DoctorArguments& arguments) {
    Diagnosis found;
    KeptTrace trace(session.Trace());
    found.examined.port = session.Port().address;
    if (const std::string device = qncomm::DevicePathOf(found.examined.port); !device.empty())
        found.examined.machine = qncomm::ReadMachine(device);
    const qncomm::ControlServices services = session.Desk().Services();
    qncomm::LineExamination line({.reactor = session.Loop(),
                                  .desktop = services.desktop,
                                  .files = services.hostFiles,
                                  .bindings = session.Ports().Bindings(),
                                  .number = session.Port().number,
                                  .settings = session.Ports().SettingsFor(session.Port()),
                                  .address = session.Ports().AddressOf(session.Port().number),
                                  .as = arguments.as,
                                  .trace = &trace,
                                  .progress = [&session](const std::string& doing) {
                                      if (!doing.empty()) session.Status().Show(doing);
                                      return session.Interrupted();
                                  }});
    found.examined.line = line.Run();
    found.verdict = qncomm::VerdictOf(found.examined);
    if (arguments.fix && found.verdict.fixable && !session.Interrupted()) {
        found.fixed = line.Fix(*found.examined.line);
        found.examined.line = line.Run();
        found.verdict = qncomm::VerdictOf(found.examined);
    }
    found.trace = trace.Document();
    return found;
}

/// The machine alone, where no port is chosen.
Diagnosis ExamineMachine() {
    Diagnosis found;
    found.examined.machine = qncomm::ReadMachine({});
    found.verdict = qncomm::VerdictOf(found.examined);
    return found;
}

Outcome Diagnose(Session& session, const DoctorArguments& arguments, Diagnosis& found) {
    const std::string named =
        arguments.address.empty() ? session.Options().port : arguments.address;
    if (!arguments.as.empty() && !qncomm::ParseLineSettings(arguments.as))
        return Refused(ExitStatus::Usage,
                       "--as " + arguments.as
                           + ": write rate, parity, data bits and stop bits, such as 9600,n,8,2.");
    if (named.empty() && !session.Ports().ConfiguredNumber()) {
        found = ExamineMachine();
        return {};
    }
    if (Outcome chosen = session.ChooseThePort(named); !chosen.Ok()) return chosen;
    found = Examine(session, arguments);
    return session.Interrupted() ? Cancelled() : Outcome{};
}

Json DocumentOf(const Diagnosis& found) {
    Json rows = Json::array();
    for (const Check& row : qncomm::ChecksOf(found.examined))
        rows.push_back(
            {{"name", row.name}, {"result", qncomm::NameOf(row.result)}, {"text", row.text}});
    Json document{{"port", found.examined.port.empty() ? Json() : Json(found.examined.port)},
                  {"checks", rows},
                  {"verdict", found.verdict.name},
                  {"text", found.verdict.text},
                  {"command", found.verdict.command}};
    if (!found.fixed.empty()) document["fixed"] = found.fixed;
    return document;
}

void ShowText(const Output& out, const Diagnosis& found) {
    std::vector<Output::Row> rows;
    for (const Check& row : qncomm::ChecksOf(found.examined))
        rows.push_back({row.name, qncomm::NameOf(row.result), row.text});
    out.Table({Output::Align::Left, Output::Align::Left, Output::Align::Left}, rows);
    out.Line("");
    if (!found.fixed.empty()) out.Line(found.fixed);
    out.Line(found.verdict.text);
    out.Line("  " + found.verdict.command);
}

/// The verdict was shown; only the status is left to tell.
Outcome EndOf(const Verdict& verdict) {
    Outcome outcome;
    outcome.status = static_cast<ExitStatus>(verdict.end);
    return outcome;
}

Outcome Doctor(Session& session, const DoctorArguments& arguments) {
    Diagnosis found;
    if (Outcome done = Diagnose(session, arguments, found); !done.Ok()) return done;
    if (session.Out().IsJson())
        session.Out().Document(DocumentOf(found));
    else
        ShowText(session.Out(), found);
    return EndOf(found.verdict);
}

/// The machine and the program, as who helps has to know them.
Json VersionsDocument() {
    utsname system{};
    ::uname(&system);
    return {{"qnctl", Version},
            {"system", system.sysname},
            {"release", system.release},
            {"version", system.version},
            {"machine", system.machine}};
}

Outcome Support(Session& session, const DoctorArguments& arguments) {
    Diagnosis found;
    if (Outcome done = Diagnose(session, arguments, found); !done.Ok()) return done;
    const Json document{
        {"versions", VersionsDocument()}, {"doctor", DocumentOf(found)}, {"trace", found.trace}};
    const std::string text = document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
    if (const qncomm::IoResult saved = qncomm::SaveFile(arguments.file, text); !saved.Ok())
        return Refused(ExitStatus::Error, saved.text + ".");
    if (session.Out().IsJson())
        session.Out().Document({{"file", arguments.file}, {"verdict", found.verdict.name}});
    else
        session.Out().Line(arguments.file
                           + " holds the diagnosis, the versions and what travelled meanwhile. "
                             "Contents of files and programs are not in it.");
    return {};
}

Command DoctorCommand() {
    const auto arguments = std::make_shared<DoctorArguments>();
    return {"doctor", "Look why no printer answers; ends with what cures it", Needs::Nothing,
            [arguments](CLI::App& app) {
                app.add_option("ADDRESS", arguments->address, "The port, as --port takes it");
                DeclareGivenSettings(app, arguments->as);
                app.add_flag("--fix", arguments->fix,
                             "Stop the program or the transfer that keeps the printer");
            },
            [arguments](Session& session) { return Doctor(session, *arguments); }};
}

Command SupportCommand() {
    const auto arguments = std::make_shared<DoctorArguments>();
    return {"support", "Write what \"doctor\" finds to a file for who helps", Needs::Nothing,
            [arguments](CLI::App& app) {
                app.add_option("FILE", arguments->file, "The file to write, JSON")->required();
                DeclareGivenSettings(app, arguments->as);
            },
            [arguments](Session& session) { return Support(session, *arguments); }};
}

} // namespace

CommandTable DoctorCommands() {
    return {DoctorCommand(), SupportCommand()};
}

} // namespace qnctl
