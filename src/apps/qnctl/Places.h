#pragma once

#include "Outcome.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qnctl {

class Session;

/// Where a verb finds files or puts them: on the printer or on this machine.
struct Place {
    std::string device; ///< lower case with its colon, such as "c:"; empty on this machine
    std::string name;   ///< on the printer in its bytes, empty for all of the device; else a path

    bool OnPrinter() const { return !device.empty(); }
    /// As the printer, or this machine, takes it.
    std::string Full() const { return device + name; }
    /// As a person reads it (UTF-8).
    std::string Shown() const;
};

/// A word of the command line. Letters and digits before a ":" are a device of the printer, as in
/// "c:LABEL.PRG"; all else is a path ("./c:x" is one, too). Nothing, with the outcome set, when a
/// character of a printer's name has no byte there.
std::optional<Place> PlaceOf(const std::string& sWord, Outcome& outcome);

/// The same for a word that must be on the printer; a bare "*.PRG" is refused with what to write.
std::optional<Place> PrinterPlaceOf(const std::string& sWord, Outcome& outcome);

/// Whether "*" (any characters) or "?" (one) stands in a name.
bool IsPattern(std::string_view sName);

/// Whether a name is one that the pattern means; letter case makes no difference, as on printers.
bool Matches(std::string_view sPattern, std::string_view sName);

/// A file as the printer lists it.
struct ListedFile {
    Place place;
    std::int32_t size = 0; ///< bytes
};

/// The listed files that a place on the printer means: those of the pattern or the name, all of a
/// bare device. Raises what the printer says of the device.
std::vector<ListedFile> ListedAt(Session& session, const Place& place, bool system = false);

/// The same by name alone, without asking the printer for a place that names one file. Nothing,
/// with the outcome set, when a pattern means no file.
std::optional<std::vector<Place>> FilesAt(Session& session, const Place& place, Outcome& outcome);

} // namespace qnctl
