#include "CallRules.h"

#include <array>

namespace qncomm::testing {
namespace {

struct CallRow {
    std::string_view call;
    std::string_view places; ///< files below src/ that may make it, a blank between them
    std::string_view instead;
};

constexpr std::string_view OpensFiles = "platform/FileOpening.h opens files";
constexpr std::string_view MakesFiles = "platform/DurableFile.h makes new files";

// What a path leads to is asked in one place, before it is opened. The others open what is no file
// of a person's: a device, a pseudo-terminal, a name that nobody else has, the program's own icons.
constexpr std::array CallRows{
    CallRow{"::open(",
            "platform/FileOpening.cpp platform/DurableFile.cpp platform/ProcessLauncher.cpp "
            "platform/StandardStreams.cpp serial/TtyProbe.cpp "
            "simulator/endpoints/PtyEndpoint.cpp",
            OpensFiles},
    CallRow{"::openat(", "", OpensFiles},
    CallRow{"fopen(", "", OpensFiles},
    CallRow{"std::ifstream", "", OpensFiles},
    CallRow{"std::ofstream", "", OpensFiles},
    CallRow{"std::fstream", "", OpensFiles},
    CallRow{"QFile ", "apps/qnterm/window/Icons.cpp faces/qt/frame/Icons.cpp", OpensFiles},
    CallRow{"QFile(", "", OpensFiles},
    CallRow{"QSaveFile", "", MakesFiles},
    CallRow{"QTemporaryFile", "", MakesFiles},
    CallRow{"mkstemp", "", MakesFiles},
    CallRow{"mkostemp", "", MakesFiles},
    CallRow{"tmpfile(", "", MakesFiles},
    CallRow{"QSettings", "", "platform/FileSettings.h keeps settings"},
};

bool MayCall(std::string_view places, std::string_view file) {
    return (" " + std::string(places) + " ").find(" " + std::string(file) + " ")
           != std::string::npos;
}

} // namespace

std::vector<std::string> StrayCalls(std::string_view file, std::string_view text) {
    std::vector<std::string> stray;
    for (const CallRow& row : CallRows)
        if (text.find(row.call) != std::string_view::npos && !MayCall(row.places, file))
            stray.push_back(std::string(file) + ": " + std::string(row.call)
                            + "…: " + std::string(row.instead));
    return stray;
}

} // namespace qncomm::testing
