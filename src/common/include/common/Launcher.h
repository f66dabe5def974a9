#pragma once

#include <string>
#include <vector>

namespace qncomm {

/// A program to be started beside this one; UTF-8 texts.
struct LaunchRequest {
    std::string program;
    std::vector<std::string> arguments;
    std::string folder; ///< its working folder; empty: this program's
    bool operator==(const LaunchRequest&) const = default;
};

/// What became of a start; the enum for the program, the rest for the person.
struct LaunchResult {
    enum class Kind { Started, NotFound, Refused };
    Kind kind = Kind::Started;
    int systemError = 0; ///< the system's number, 0 for none
    std::string text;    ///< empty when started
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
