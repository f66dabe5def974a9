#pragma once

#include "Outcome.h"

#include "link/clsDataLink.h"

#include <string>

namespace CLI {
class App;
}

namespace qnctl {

/// Declares the option --as, whose text goes to given.
void DeclareGivenSettings(CLI::App& app, std::string& given);

/// Gives the link the settings of --as for this run, such as "9600,n,8,2"; an empty text leaves the
/// configured ones. Refused for a text that is none.
Outcome UseGivenSettings(qncomm::clsDataLink& link, const std::string& given);

} // namespace qnctl
