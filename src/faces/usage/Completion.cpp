#include "usage/Completion.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace qncomm {
namespace {

/// Values that are names of files.
constexpr std::array<std::string_view, 8> FileValues{"PLACE", "FILE",   "HOSTFILE", "PATH",
                                                     "DIR",   "FOLDER", "IN",       "OUT"};

/// How far a command line has come.
struct Place {
    std::vector<const Usage*> path;       ///< the program and the commands that were named
    std::size_t arguments = 0;            ///< that the last of them has got
    const Usage::Option* waits = nullptr; ///< its value comes next
    bool plain = false;                   ///< a "--" was there: no options any more
    bool wrong = false;                   ///< there is no such command or option

    const Usage& Last() const { return *path.back(); }
};

const Usage::Option* FindOption(const Place& place, std::string_view name) {
    for (const Usage* usage : place.path)
        for (const Usage::Option& option : usage->options)
            if (std::ranges::find(option.names, name) != option.names.end()) return &option;
    return nullptr;
}

void PassOption(Place& place, std::string_view word) {
    const std::size_t equals = word.find('=');
    const Usage::Option* option = FindOption(place, word.substr(0, equals));
    place.wrong = place.wrong || option == nullptr;
    const bool wants = option != nullptr && !option->value.name.empty();
    if (wants && equals == std::string_view::npos) place.waits = option;
}

void PassCommand(Place& place, std::string_view word) {
    const auto& commands = place.Last().commands;
    const auto named = std::ranges::find(commands, word, &Usage::name);
    if (named == commands.end())
        place.wrong = true;
    else
        place.path.push_back(&*named);
}

void Pass(Place& place, const std::string& word) {
    if (place.waits != nullptr)
        place.waits = nullptr;
    else if (!place.plain && word == "--")
        place.plain = true;
    else if (!place.plain && word.starts_with('-'))
        PassOption(place, word);
    else if (!place.Last().commands.empty())
        PassCommand(place, word);
    else
        ++place.arguments;
}

Offers OfValue(const Usage::Value& value, const LiveNames& live) {
    Offers offers;
    for (const std::string& choice : value.choices)
        offers.words.push_back({choice, {}});
    if (offers.words.empty() && live) offers.words = live(value.name);
    offers.files =
        offers.words.empty() && std::ranges::find(FileValues, value.name) != FileValues.end();
    return offers;
}

Offers OfOptions(const Place& place) {
    Offers offers;
    for (auto usage = place.path.rbegin(); usage != place.path.rend(); ++usage)
        for (const Usage::Option& option : (*usage)->options)
            for (const std::string& name : option.names)
                offers.words.push_back({name, option.help});
    return offers;
}

Offers OfArgument(const Place& place, const LiveNames& live) {
    const auto& arguments = place.Last().arguments;
    if (place.arguments < arguments.size()) return OfValue(arguments[place.arguments].value, live);
    if (!arguments.empty() && arguments.back().repeated)
        return OfValue(arguments.back().value, live);
    return {};
}

Offers OfCommands(const Place& place) {
    Offers offers;
    for (const Usage& command : place.Last().commands)
        offers.words.push_back({command.name, command.help});
    return offers;
}

/// Those that begin so, each once: help stands in every command, a port by its device and its name.
Offers Beginning(const Offers& offers, std::string_view begun, std::string_view before = {}) {
    Offers kept{{}, offers.files};
    for (const Offer& offer : offers.words) {
        const std::string word = std::string(before) + offer.word;
        if (offer.word.starts_with(begun)
            && std::ranges::find(kept.words, word, &Offer::word) == kept.words.end())
            kept.words.push_back({word, offer.help});
    }
    return kept;
}

} // namespace

Offers Complete(const Usage& program, const std::vector<std::string>& words,
                const LiveNames& live) {
    Place place{.path = {&program}};
    for (std::size_t i = 0; i + 1 < words.size(); ++i)
        Pass(place, words[i]);
    if (place.wrong) return {};
    const std::string word = words.empty() ? std::string() : words.back();
    if (place.waits != nullptr) return Beginning(OfValue(place.waits->value, live), word);
    if (!place.plain && word.starts_with('-')) {
        const std::size_t equals = word.find('=');
        if (equals == std::string::npos) return Beginning(OfOptions(place), word);
        const Usage::Option* option = FindOption(place, word.substr(0, equals));
        if (option == nullptr || option->value.name.empty()) return {};
        return Beginning(OfValue(option->value, live), word.substr(equals + 1),
                         word.substr(0, equals + 1));
    }
    if (!place.Last().commands.empty()) return Beginning(OfCommands(place), word);
    return Beginning(OfArgument(place, live), word);
}

} // namespace qncomm
