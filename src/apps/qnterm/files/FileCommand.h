#pragma once

#include "DeviceList.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace qnterm {

class FileActions;

/// Something that can be done with the selected files of a device.
struct FileCommand {
    /// How many files it takes.
    enum class Takes { None, One, Some };
    using Act = void (*)(FileActions&, const DeviceListing&, const std::vector<std::string>&);

    const char* icon;
    const char* text;
    const char* tip;
    const char* shortcut; ///< counts while the browser has the focus
    unsigned kinds;       ///< a bit for each kind of device that it is for
    Takes takes;
    Act act;

    bool IsFor(DeviceKind kind) const;
    bool Fits(std::size_t lCount) const;
};

/// All of them, in the order in which they are offered.
std::span<const FileCommand> FileCommands();

} // namespace qnterm
