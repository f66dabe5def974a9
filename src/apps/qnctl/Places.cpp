#include "Places.h"

#include "FileListing.h"
#include "PlainCommand.h"
#include "Session.h"

#include "common/Text.h"
#include "console/Charset.h"

#include <algorithm>

namespace qnctl {
namespace {

bool IsOfADevice(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

} // namespace

std::string Place::Shown() const {
    return OnPrinter() ? qncomm::Utf8FromPrinter(Full()) : name;
}

std::optional<Place> PlaceOf(const std::string& sWord, Outcome& outcome) {
    const std::size_t colon = sWord.find(':');
    if (colon == 0 || colon == std::string::npos
        || !std::all_of(sWord.begin(), sWord.begin() + static_cast<std::ptrdiff_t>(colon),
                        IsOfADevice))
        return Place{{}, sWord};
    const auto name = ForPrinter(sWord.substr(colon + 1), outcome);
    if (!name) return std::nullopt;
    return Place{qncomm::LowerCase(sWord.substr(0, colon + 1)), *name};
}

std::optional<Place> PrinterPlaceOf(const std::string& sWord, Outcome& outcome) {
    auto place = PlaceOf(sWord, outcome);
    if (!place || place->OnPrinter()) return place;
    outcome = Refused(ExitStatus::Usage, "\"" + sWord + "\" names no device of the printer; \"c:"
                                             + qncomm::FileNameOf(sWord) + "\" does, for one.");
    return std::nullopt;
}

bool IsPattern(std::string_view sName) {
    return sName.find_first_of("*?") != std::string_view::npos;
}

bool Matches(std::string_view sPattern, std::string_view sName) {
    // The last "*" may mean more than it did; no earlier one needs to.
    std::size_t at = 0;
    std::size_t of = 0;
    std::size_t star = std::string_view::npos;
    std::size_t meant = 0;
    while (of < sName.size()) {
        if (at < sPattern.size() && sPattern[at] == '*') {
            star = at++;
            meant = of;
        } else if (at < sPattern.size()
                   && (sPattern[at] == '?'
                       || qncomm::EqualNoCase(sPattern.substr(at, 1), sName.substr(of, 1)))) {
            ++at;
            ++of;
        } else if (star != std::string_view::npos) {
            at = star + 1;
            of = ++meant;
        } else {
            return false;
        }
    }
    return sPattern.find_first_not_of('*', at) == std::string_view::npos;
}

std::vector<ListedFile> ListedAt(Session& session, const Place& place, bool system) {
    const std::string pattern = place.name.empty() ? "*" : place.name;
    std::vector<ListedFile> found;
    for (const auto& file : *FilesOn(session, place.device, system))
        if (Matches(pattern, file->Name)) found.push_back({{place.device, file->Name}, file->Size});
    return found;
}

std::optional<std::vector<Place>> FilesAt(Session& session, const Place& place, Outcome& outcome) {
    if (!place.name.empty() && !IsPattern(place.name)) return std::vector{place};
    std::vector<Place> found;
    for (const ListedFile& file : ListedAt(session, place))
        found.push_back(file.place);
    if (!found.empty()) return found;
    outcome = Refused(ExitStatus::Error, "There is no file " + place.Shown() + ".");
    return std::nullopt;
}

} // namespace qnctl
