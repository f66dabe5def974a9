#include "usage/UsageOf.h"

#include <CLI/CLI.hpp>

namespace qncomm {
namespace {

/// A value as the help shows it: its type, and behind a colon what it is checked for, such as
/// "TEXT:{text,file,run}".
Usage::Value ValueOf(const CLI::Option& option, std::string name) {
    Usage::Value value{std::move(name), {}};
    const std::string checked = option.get_type_name();
    const std::size_t begin = checked.find(":{");
    const std::size_t end = checked.find('}', begin);
    if (begin == std::string::npos || end == std::string::npos) return value;
    value.choices = CLI::detail::split(checked.substr(begin + 2, end - begin - 2), ',');
    return value;
}

Usage::Option OptionOf(const CLI::Option& option) {
    Usage::Option read{{}, {}, option.get_description()};
    for (const std::string& name : option.get_snames())
        read.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        read.names.push_back("--" + name);
    const std::string type = option.get_type_name();
    if (option.get_items_expected_max() > 0)
        read.value = ValueOf(option, type.substr(0, type.find(':')));
    return read;
}

Usage::Argument ArgumentOf(const CLI::Option& option) {
    return {ValueOf(option, option.get_name(true)), option.get_description(), option.get_required(),
            option.get_items_expected_max() > 1};
}

} // namespace

Usage UsageOf(const CLI::App& app) {
    Usage usage{app.get_name(), app.get_description(), app.get_footer()};
    for (const CLI::Option* option : app.get_options())
        if (option->get_positional())
            usage.arguments.push_back(ArgumentOf(*option));
        else
            usage.options.push_back(OptionOf(*option));
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        usage.commands.push_back(UsageOf(*command));
    return usage;
}

} // namespace qncomm
