// One cause after the other, each by the facts that it is known by.
#include "diagnosis/Diagnosis.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace qncomm::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

/// A device of this machine with nothing wrong, on which nothing answers.
Examined Quiet() {
    Examined examined{.port = "/dev/ttyUSB0", .machine = MachineFacts{}, .line = LineFacts{}};
    examined.machine->path = "/dev/ttyUSB0";
    examined.machine->name = "ttyUSB0";
    examined.machine->exists = true;
    examined.machine->user = "anna";
    examined.machine->group = "dialout";
    examined.machine->messages.emplace();
    examined.line->settings = "9600,N,8,2";
    examined.line->dsr = true;
    examined.line->answer = Answer::Nothing;
    return examined;
}

Examined Healthy() {
    Examined examined = Quiet();
    examined.line->answer = Answer::Printer;
    examined.line->model = "R7G";
    examined.line->found = "9600,N,8,2";
    examined.line->errorsTold = true;
    return examined;
}

Examined Closed(IoStatus status, const std::string& text = "because") {
    Examined examined = Quiet();
    examined.line->opening = {status, 0, text};
    examined.line->answer = Answer::NotAsked;
    return examined;
}

const PortService Modems{"ModemManager", "types", "sudo systemctl stop ModemManager", false};
const PortService Login{"agetty", "asks", "sudo systemctl stop serial-getty@ttyUSB0", true};
const PortService Braille{"brltty", "takes", "sudo systemctl mask --now brltty", false};

struct Case {
    const char* name; ///< of the verdict
    CommandEnd end;
    const char* command; ///< holds this
    Examined examined;
};

template <typename Change>
Examined With(Examined examined, Change change) {
    change(examined);
    return examined;
}

constexpr auto Unavailable = CommandEnd::PortUnavailable;
constexpr auto None = CommandEnd::NoPrinter;

Examined Says(LineTalk talk) {
    return With(Quiet(), [talk](Examined& e) {
        e.line->heard.talk = talk;
        e.line->heardAt = "9600,N,8,2";
        e.line->answer = Answer::NotAsked;
    });
}

Examined Answers(Answer answer) {
    return With(Quiet(), [answer](Examined& e) { e.line->answer = answer; });
}

const std::vector<Case> AllCases{
    {"healthy", CommandEnd::Healthy, "qnctl info --port /dev/ttyUSB0", Healthy()},
    {"healthy", CommandEnd::Healthy, "qnctl info",
     With(Healthy(), [](Examined& e) { e.machine->services = {Modems}; })},
    {"healthy", CommandEnd::Healthy, "qnctl info",
     With(Healthy(),
          [](Examined& e) {
              e.machine->users.found = {{7, "cat"}};
          })},
    {"no-port",
     CommandEnd::Usage,
     "qnctl ports",
     {.port = {}, .machine = MachineFacts{}, .line = {}}},
    {"no-port", CommandEnd::Usage, "qnctl doctor /dev/ttyS3",
     With({.port = {}, .machine = MachineFacts{}, .line = {}},
          [](Examined& e) {
              e.machine->devices = {{"/dev/ttyS3", ""}};
          })},
    {"taken-adapter", Unavailable, "brltty",
     With(Closed(IoStatus::Missing), [](Examined& e) { e.machine->services = {Braille}; })},
    {"unplugged", Unavailable, "qnctl doctor /dev/ttyUSB0",
     With(
         Closed(IoStatus::Missing),
         [](Examined& e) { e.machine->messages = {{"converter now disconnected from ttyUSB0"}}; })},
    {"missing", Unavailable, "qnctl ports", Closed(IoStatus::Missing)},
    {"login", Unavailable, "serial-getty@ttyUSB0",
     With(Closed(IoStatus::Busy), [](Examined& e) { e.machine->services = {Login}; })},
    {"busy", Unavailable, "kill 7",
     With(Closed(IoStatus::Busy),
          [](Examined& e) {
              e.machine->users.found = {{7, "cat", true}};
          })},
    {"busy", Unavailable, "sudo fuser -v /dev/ttyUSB0", Closed(IoStatus::Busy)},
    {"not-yet-in-group", Unavailable, "newgrp dialout",
     With(Closed(IoStatus::Denied),
          [](Examined& e) { e.machine->access = DeviceAccess::NotYetInGroup; })},
    {"not-in-group", Unavailable, "sudo usermod -aG dialout anna",
     With(Closed(IoStatus::Denied),
          [](Examined& e) { e.machine->access = DeviceAccess::NotInGroup; })},
    {"denied", Unavailable, "setfacl",
     With(Closed(IoStatus::Denied),
          [](Examined& e) { e.machine->access = DeviceAccess::NobodyOfGroup; })},
    {"not-serial", Unavailable, "qnctl ports", Closed(IoStatus::Unsupported)},
    {"unreachable", Unavailable, "qnctl doctor tcp://a:1",
     With(Closed(IoStatus::Failed),
          [](Examined& e) {
              e.port = "tcp://a:1";
              e.machine.reset();
          })},
    {"no-host", Unavailable, "qnctl ports",
     With(Closed(IoStatus::Missing),
          [](Examined& e) {
              e.port = "tcp://a:1";
              e.machine.reset();
          })},
    {"not-rfc2217", Unavailable, "qnctl doctor tcp://a:1",
     With(Closed(IoStatus::TimedOut, "does not speak RFC 2217"),
          [](Examined& e) {
              e.port = "rfc2217://a:1";
              e.machine.reset();
          })},
    {"lost", Unavailable, "qnctl doctor",
     With(Quiet(), [](Examined& e) { e.line->loss = "it went away"; })},
    {"zmodem", None, "--fix", Says(LineTalk::ZModemReceiver)},
    {"kermit", None, "--fix", Says(LineTalk::KermitReceiver)},
    {"asking", None, "--fix", Says(LineTalk::Question)},
    {"asking", None, "--fix", Answers(Answer::Taken)},
    {"running", None, "qnctl program stop --as 9600,N,8,2 --port /dev/ttyUSB0",
     Says(LineTalk::Text)},
    {"shared", None, "kill 7",
     With(Quiet(),
          [](Examined& e) {
              e.machine->users.found = {{7, "cat"}};
          })},
    {"grabbed", None, "ModemManager",
     With(Quiet(), [](Examined& e) { e.machine->services = {Modems}; })},
    {"load", None, "qnctl info --port", With(Quiet(), [](Examined& e) { e.line->load = 5000; })},
    {"echo", None, "qnctl doctor", Answers(Answer::Echo)},
    {"half", CommandEnd::Error, "qnctl doctor", Answers(Answer::Half)},
    {"other-device", None, "qnctl watch", Answers(Answer::Text)},
    {"noise", None, "watch --hex", Answers(Answer::Noise)},
    {"noise", None, "watch --hex", Says(LineTalk::Noise)},
    {"switched-off", None, "qnctl doctor", With(Quiet(), [](Examined& e) { e.line->dsr = false; })},
    {"silent", None, "qnctl connect --port /dev/ttyUSB0", Quiet()},
};

TEST(Verdict, NamesTheCauseAndTheCommandThatCuresIt) {
    for (const Case& each : AllCases) {
        SCOPED_TRACE(each.name);
        const Verdict verdict = VerdictOf(each.examined);
        EXPECT_EQ(verdict.name, each.name);
        EXPECT_EQ(verdict.end, each.end);
        EXPECT_THAT(verdict.command, HasSubstr(each.command));
        EXPECT_THAT(verdict.text, Not(IsEmpty()));
    }
}

TEST(Verdict, ComesWithARowThatDoesNotPassUnlessHealthy) {
    for (const Case& each : AllCases) {
        SCOPED_TRACE(each.name);
        const Checks rows = ChecksOf(each.examined);
        const bool failed = std::ranges::any_of(
            rows, [](const Check& row) { return row.result == CheckResult::Fail; });
        const bool portless = each.end == CommandEnd::Usage;
        EXPECT_EQ(failed, each.end != CommandEnd::Healthy && !portless);
    }
}

TEST(Verdict, WhatCannotBeSeenNeverPasses) {
    Examined blind = Quiet();
    blind.machine->users.everyoneSeen = false;
    blind.machine->servicesSeen = false;
    blind.machine->messages.reset();
    blind.line->dsr.reset();
    std::set<std::string> unknown;
    for (const Check& row : ChecksOf(blind))
        if (row.result == CheckResult::Unknown) unknown.insert(row.name);
    EXPECT_EQ(unknown, (std::set<std::string>{"adapter", "other programs", "services", "kernel",
                                              "modem lines", "line errors"}));
}

TEST(Verdict, LineErrorsOfAnAnsweringPrinterAreShownAndNotTheVerdict) {
    Examined examined = Healthy();
    examined.line->errors.overrun = true;
    EXPECT_EQ(VerdictOf(examined).name, "healthy");
    const Checks rows = ChecksOf(examined);
    EXPECT_TRUE(std::ranges::any_of(rows, [](const Check& row) {
        return row.name == "line errors" && row.result == CheckResult::Warning;
    }));
}

TEST(Verdict, AnAddressIsQuotedForAShell) {
    EXPECT_EQ(ShellWord("tcp://[::1]:4000"), "tcp://[::1]:4000");
    EXPECT_EQ(ShellWord("sim:R7G?baud=1"), "'sim:R7G?baud=1'");
    EXPECT_EQ(ShellWord("it's"), "'it'\\''s'");
}

} // namespace
} // namespace qncomm::testing
