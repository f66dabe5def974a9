// The rows: each looks at one kind of facts, and says no more than they hold.

#include "diagnosis/Diagnosis.h"

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

using R = CheckResult;

Check Device(const MachineFacts& machine) {
    if (machine.path.empty()) {
        if (machine.devices.empty())
            return {"device", R::Warning, "This machine has no serial device."};
        std::string text = "This machine has";
        for (const SerialDevice& device : machine.devices)
            text += (&device == machine.devices.data() ? " " : ", ") + device.path;
        return {"device", R::Pass, text + "."};
    }
    const std::string behind =
        machine.path == "/dev/" + machine.name ? "" : ", that is " + machine.name;
    if (machine.exists) return {"device", R::Pass, machine.path + behind + " is there."};
    return {"device", R::Fail, "There is no " + machine.path + "."};
}

Check Adapter(const MachineFacts& machine) {
    if (!machine.exists) return {"adapter", R::Skipped, "There is no device to look behind."};
    if (!machine.adapter)
        return {"adapter", machine.name.starts_with("ttyUSB") ? R::Unknown : R::Skipped,
                "No USB adapter is seen behind " + machine.name + "."};
    const UsbAdapter& adapter = *machine.adapter;
    std::string text =
        adapter.maker.empty() ? adapter.product : adapter.maker + " " + adapter.product;
    text += " (" + adapter.vendorId + ":" + adapter.productId + ")";
    text += adapter.serial.empty() ? ", without a serial number."
                                   : ", serial number " + adapter.serial + ".";
    return {"adapter", R::Pass, text};
}

Check Permission(const MachineFacts& machine, const LineFacts& line) {
    const char* const name = "permission";
    if (!machine.exists) return {name, R::Skipped, "There is no device to open."};
    if (machine.access == DeviceAccess::Granted)
        return {name, R::Pass, machine.user + " may open " + machine.path + "."};
    if (line.opening.Ok())
        return {name, R::Pass, "An access list lets " + machine.user + " open it."};
    const std::string mayNot = machine.user + " may not open " + machine.path + ": ";
    if (machine.access == DeviceAccess::NotInGroup)
        return {name, R::Fail, mayNot + "the group " + machine.group + " may."};
    if (machine.access == DeviceAccess::NotYetInGroup)
        return {name, R::Fail,
                mayNot + "added to the group " + machine.group + " after this login."};
    return {name, R::Fail, mayNot + "nor may the group " + machine.group + "."};
}

Check OtherPrograms(const MachineFacts& machine, const LineFacts& line) {
    const char* const name = "other programs";
    if (!machine.exists || line.opening.status == IoStatus::Unsupported)
        return {name, R::Skipped, "There is no serial device to hold."};
    if (!machine.users.found.empty()) {
        const PortHolder& user = machine.users.found.front();
        const bool keeps = user.locks || line.opening.status == IoStatus::Busy;
        return {name, keeps ? R::Fail : R::Warning,
                "It is " + user.Text()
                    + (keeps ? "." : ", without a lock: both read, and each gets a part.")};
    }
    if (line.opening.status == IoStatus::Busy)
        return {name, R::Fail, "It is " + line.opening.text + "."};
    if (!machine.users.everyoneSeen)
        return {name, R::Unknown,
                "No program of yours has it open; those of others cannot be seen."};
    return {name, R::Pass, "No other program has it open."};
}

Check Services(const MachineFacts& machine) {
    if (!machine.services.empty()) {
        const PortService& service = machine.services.front();
        return {"services", service.owns ? R::Fail : R::Warning,
                service.name + " runs: it " + service.does + "."};
    }
    if (!machine.servicesSeen)
        return {"services", R::Unknown, "The processes of others cannot be seen."};
    return {"services", R::Pass, "No service that grabs such a port runs."};
}

bool TellsOfTrouble(const std::string& message) {
    constexpr std::array<std::string_view, 5> words{"disconnected", "rror", "ail", "overrun",
                                                    "over-current"};
    return std::ranges::any_of(
        words, [&](std::string_view word) { return message.find(word) != std::string::npos; });
}

Check Kernel(const MachineFacts& machine) {
    if (!machine.messages)
        return {"kernel", R::Unknown, "Its messages are not for this user; sudo dmesg shows them."};
    if (machine.messages->empty())
        return {"kernel", R::Pass, "It keeps no message about " + machine.name + "."};
    const std::string& last = machine.messages->back();
    return {"kernel", TellsOfTrouble(last) ? R::Warning : R::Pass, "Its last message: " + last};
}

Check Opening(const LineFacts& line) {
    if (line.opening.Ok()) return {"opening", R::Pass, "It opens at " + line.settings + "."};
    return {"opening", R::Fail, "It does not open: " + line.opening.text + "."};
}

Check ModemLines(const LineFacts& line) {
    if (!line.opening.Ok()) return {"modem lines", R::Skipped, "The port did not open."};
    if (!line.dsr) return {"modem lines", R::Unknown, "This kind of port shows none."};
    if (*line.dsr)
        return {"modem lines", R::Pass, "DSR is held: something is connected and switched on."};
    return {"modem lines", R::Warning,
            "DSR is not held: switched off, not connected, or not wired."};
}

Check Errors(const LineFacts& line) {
    const char* const name = "line errors";
    if (!line.opening.Ok()) return {name, R::Skipped, "The port did not open."};
    const LineErrors& errors = line.errors;
    std::string kinds;
    for (const auto& [seen, kind] : {std::pair{errors.frame, " frame"},
                                     {errors.parity, " parity"},
                                     {errors.overrun, " overrun"},
                                     {errors.overflow, " overflow"}})
        kinds += seen ? kind : "";
    if (!kinds.empty())
        return {name, line.answer == Answer::Printer ? R::Warning : R::Fail,
                "The line tells of errors:" + kinds + "."};
    if (!line.errorsTold)
        return {name, R::Unknown,
                "Nothing came that errors could have shown in, or the port does not tell of them."};
    return {name, R::Pass, "What came had none."};
}

std::string Quoted(const std::string& shown) {
    return shown.empty() ? "" : ": \"" + shown + "\"";
}

Check Listening(const LineFacts& line) {
    if (!line.opening.Ok()) return {"listening", R::Skipped, "The port did not open."};
    if (!line.loss.empty()) return {"listening", R::Fail, "The line was lost: " + line.loss + "."};
    const LineTalk talk = line.heard.talk;
    if (talk == LineTalk::Silence) return {"listening", R::Pass, "Nothing comes by itself."};
    const bool own = talk == LineTalk::Prompt || talk == LineTalk::Boot;
    return {"listening", own ? R::Pass : R::Fail,
            "At " + line.heardAt + " comes by itself" + Quoted(line.heardText)};
}

Check BrokenLoad(const LineFacts& line) {
    const std::string load = "A load of " + std::to_string(line.load) + " bytes broke off here: ";
    if (line.loadGivenUp)
        return {"load", R::Warning,
                load + "the printer waited for its rest, and has given it up now."};
    if (line.answer == Answer::Printer)
        return {"load", R::Pass, load + "the printer does not wait for its rest any more."};
    return {"load", R::Warning, load + "the printer may wait for its rest."};
}

Check Answering(const LineFacts& line) {
    const auto fail = [&](const std::string& text) {
        return Check{"answer", R::Fail, text + Quoted(line.answerText)};
    };
    switch (line.answer) {
    case Answer::Printer:
        return {"answer", R::Pass,
                "A printer " + line.model + " answers at " + line.found + " on its channel "
                    + std::to_string(line.channel) + "."};
    case Answer::Nothing:
        return {"answer", R::Fail, "Nothing came back at any rate and format."};
    case Answer::Half:
        return fail("A printer answers, and then not as one does");
    case Answer::Echo:
        return fail("Just what was sent came back");
    case Answer::Taken:
        return fail("Command lines are taken and not carried out");
    case Answer::Text:
        return fail("A text came back that is no printer's answer");
    case Answer::Noise:
        return fail("Bytes came back that are no text at any rate and format");
    default:
        return {"answer", R::Skipped, "Nothing was sent."};
    }
}

} // namespace

const char* NameOf(CheckResult result) {
    static constexpr std::array names{"pass", "warning", "fail", "skipped", "unknown"};
    return names.at(static_cast<std::size_t>(result));
}

Checks ChecksOf(const Examined& examined) {
    Checks rows;
    const LineFacts line = examined.line.value_or(LineFacts{});
    if (const auto& machine = examined.machine) {
        rows.push_back(Device(*machine));
        if (!machine->path.empty())
            for (Check row : {Adapter(*machine), Permission(*machine, line),
                              OtherPrograms(*machine, line), Services(*machine), Kernel(*machine)})
                rows.push_back(std::move(row));
    }
    if (line.load > 0) rows.push_back(BrokenLoad(line));
    if (examined.line)
        for (Check row :
             {Opening(line), ModemLines(line), Errors(line), Listening(line), Answering(line)})
            rows.push_back(std::move(row));
    return rows;
}

} // namespace qncomm
