#pragma once

#include <string>
#include <vector>

namespace qncomm {

/// A program to be started beside this one; UTF-8 texts.
struct LaunchRequest {
    std::string program;                ///< its path, or a name to be searched for
    std::vector<std::string> arguments; ///< without the program; each arrives as it stands
    std::string folder;                 ///< its working folder; empty: this program's
    /// Whether the same program would be started in the same way.
    bool operator==(const LaunchRequest&) const = default;
};

/// How a start ended: the kind for the program, the rest for the user.
struct LaunchResult {
    /// How a start ended.
    enum class Kind {
        Started,  ///< the program runs, or has run
        NotFound, ///< there is no such program
        Refused,  ///< there is, but it did not start
    };
    Kind kind = Kind::Started; ///< what the program acts on
    int systemError = 0;       ///< the system's number, 0 for none
    std::string text;          ///< empty when started
};

/// Starts programs. A face or a host implements it, never through a shell: an argument reaches the
/// program as it stands in the list.
class Launcher {
  public:
    virtual ~Launcher() = default;

    /// Starts the program and does not wait for its end.
    virtual LaunchResult Launch(const LaunchRequest& request) = 0;
};

} // namespace qncomm
