#pragma once

#include "Outcome.h"
#include "Places.h"

#include <string>

namespace qnctl {

class Session;

/// One file on its way.
struct Journey {
    Place from;
    Place to;
};

/// How files travel.
struct Travel {
    std::string by;         ///< "module", "image", "font" or "kermit"; empty: by what a file holds
    bool permanent = false; ///< what is installed is kept through a restart
    bool resume = false;    ///< an earlier try is gone on with
};

/// Sends a file of this machine to the printer: a program as a module, an image or a font that has
/// no device to go to installed, all else by Kermit. Without a name there it keeps its own. Says at
/// a terminal what was done, how much and how fast.
Outcome Send(Session& session, Journey journey, const Travel& travel);

/// Fetches a file of the printer to a path of this machine, by Kermit; told in the same way.
Outcome Fetch(Session& session, const Journey& journey, const Travel& travel);

/// The file in a folder of this machine that a file of the printer becomes: what the printer calls
/// it is a name there, never a path, and no hidden one.
std::string PathFor(const Place& file, const std::string& folder);

} // namespace qnctl
