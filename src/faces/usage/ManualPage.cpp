#include "usage/ManualPage.h"

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

constexpr std::array<std::string_view, 3> Programs{"qnctl", "qnsim", "qnterm"};

/// What roff would take for something else, or not show as it is written.
struct Written {
    std::string_view text;
    std::string_view roff;
};
constexpr std::array Escapes{Written{"-", "\\-"}, Written{"\\", "\\e"}, Written{"…", "..."},
                             Written{"\n.", "\n\\&."}, Written{"\n'", "\n\\&'"}};

/// A text as roff shows it: dashes that can be copied, no escapes, no line that would be a request.
std::string Plain(std::string_view text) {
    std::string roff;
    if (text.starts_with('.') || text.starts_with('\'')) roff = "\\&";
    while (!text.empty()) {
        const auto* const escape = std::ranges::find_if(
            Escapes, [&](const Written& written) { return text.starts_with(written.text); });
        const bool plain = escape == Escapes.end();
        roff += plain ? text.substr(0, 1) : escape->roff;
        text.remove_prefix(plain ? 1 : escape->text.size());
    }
    return roff;
}

std::string Bold(std::string_view text) {
    return "\\fB" + Plain(text) + "\\fR";
}

std::string Italic(std::string_view text) {
    return "\\fI" + Plain(text) + "\\fR";
}

/// A value that is one of a few is shown as these.
std::string Shown(const Usage::Value& value) {
    if (value.choices.empty()) return Italic(value.name);
    std::string all;
    for (const std::string& choice : value.choices)
        all += (all.empty() ? "" : "|") + Bold(choice);
    return all;
}

std::string Names(const Usage::Option& option) {
    std::string names;
    for (const std::string& name : option.names)
        names += (names.empty() ? "" : ", ") + Bold(name);
    return option.value.name.empty() ? names : names + " " + Shown(option.value);
}

std::string Items(const Usage& usage) {
    std::string roff;
    for (const Usage::Argument& argument : usage.arguments)
        roff += ".TP\n" + Italic(argument.value.name) + "\n" + Plain(argument.help) + "\n";
    for (const Usage::Option& option : usage.options)
        roff += ".TP\n" + Names(option) + "\n" + Plain(option.help) + "\n";
    return roff;
}

/// A command's words with what follows them.
std::string Synopsis(const Usage& usage, const std::string& words) {
    std::string roff = Bold(words);
    if (!usage.options.empty()) roff += " [" + Italic("OPTION") + "]...";
    for (const Usage::Argument& argument : usage.arguments) {
        const std::string shown = Shown(argument.value) + (argument.repeated ? "..." : "");
        roff += argument.required ? " " + shown : " [" + shown + "]";
    }
    return usage.commands.empty() ? roff : roff + " " + Italic("COMMAND");
}

/// The options that the program itself has, too, stand at the program alone.
Usage WithoutThoseOf(const Usage& program, Usage command) {
    std::erase_if(command.options, [&](const Usage::Option& option) {
        return std::ranges::find(program.options, option.names, &Usage::Option::names)
               != program.options.end();
    });
    return command;
}

std::string Commands(const Usage& program, const Usage& above, const std::string& words) {
    std::string roff;
    for (const Usage& each : above.commands) {
        const Usage command = WithoutThoseOf(program, each);
        const std::string name = words + command.name;
        if (command.commands.empty())
            roff += ".SS " + Synopsis(command, name) + "\n" + Plain(command.help) + ".\n"
                    + Items(command);
        roff += Commands(program, command, name + " ");
    }
    return roff;
}

std::string SeeAlso(const Usage& program) {
    std::string others;
    for (const std::string_view name : Programs)
        if (name != program.name) others += (others.empty() ? "" : ", ") + Bold(name) + "(1)";
    return others;
}

std::string UpperCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return text;
}

/// The first sentence without its end, as lists of manual pages show it.
std::string OneLine(const std::string& help) {
    return help.substr(0, std::min(help.find(". "), help.find_last_not_of('.') + 1));
}

} // namespace

std::string ManualPage(const Usage& program, std::string_view version) {
    std::string roff = ".TH " + UpperCase(program.name) + " 1 \"\" \"QNComm " + std::string(version)
                       + "\" \"QNComm\"\n.SH NAME\n" + Plain(program.name) + " \\- "
                       + Plain(OneLine(program.help)) + "\n.SH SYNOPSIS\n"
                       + Synopsis(program, program.name) + "\n.SH DESCRIPTION\n"
                       + Plain(program.help) + "\n";
    if (!program.notes.empty()) roff += ".PP\n" + Plain(program.notes) + "\n";
    roff += ".SH OPTIONS\n" + Items(program);
    if (!program.commands.empty()) roff += ".SH COMMANDS\n" + Commands(program, program, "");
    return roff + ".SH SEE ALSO\n" + SeeAlso(program) + "\n";
}

} // namespace qncomm
