#pragma once

#include <string>
#include <vector>

namespace qncomm {

/// What a program, or one of its commands, takes; as its --help tells it.
struct Usage {
    /// What stands for a value in a text for people.
    struct Value {
        std::string name;                 ///< such as "FILE"
        std::vector<std::string> choices; ///< all that it can be; empty when that is open
    };
    /// An option, which may stand anywhere.
    struct Option {
        std::vector<std::string> names; ///< with their dashes
        Value value;                    ///< without a name for one that takes none
        std::string help;               ///< what it does
    };
    /// A word that has its place.
    struct Argument {
        Value value;           ///< what it is
        std::string help;      ///< what it is for
        bool required = false; ///< whether it must be there
        bool repeated = false; ///< whether more of them may follow
    };

    std::string name;                     ///< the program's, or the command's within the one above
    std::string help;                     ///< what it does, a sentence
    std::string notes = {};               ///< what else there is to say
    std::vector<Option> options = {};     ///< taken by the commands below as well
    std::vector<Argument> arguments = {}; ///< in their order
    std::vector<Usage> commands = {};     ///< a command with commands does nothing by itself
};

} // namespace qncomm
