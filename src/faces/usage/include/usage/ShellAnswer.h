#pragma once

#include "usage/Completion.h"
#include "usage/Usage.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// What a program prints, and the status that it ends with.
struct ShellAnswer {
    std::string text; ///< UTF-8, with the end of its last line
    int status = 0;   ///< 0, or Files

    /// The status of a completion where names of files belong.
    static constexpr int Files = 3;
};

/// The answer to those who prepare a program for its users: "--manual" is its manual page,
/// "--complete WORD..." what can stand in the last word's place, a line for each with a tab before
/// what it means. Nothing for every other command line. The arguments are those behind the
/// program's name.
std::optional<ShellAnswer> AnswerShell(const std::vector<std::string>& arguments,
                                       const std::function<Usage()>& usage,
                                       std::string_view version, const LiveNames& live = {});

} // namespace qncomm
