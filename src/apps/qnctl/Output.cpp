#include "Output.h"

#include "console/Charset.h"

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <sstream>
#include <string>

namespace qnctl {
namespace {

/// Columns that a UTF-8 text takes.
std::size_t WidthOf(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0U) != 0x80;
    }));
}

std::string TextOf(const Json& document) {
    // Texts were converted before; a byte that still is no UTF-8 must not end the program.
    return qncomm::WithoutControlsInJson(
        document.dump(-1, ' ', false, Json::error_handler_t::replace));
}

} // namespace

void Output::Document(const Json& document) const {
    std::cout << TextOf(document) << std::endl;
    Look();
}

void Output::Line(std::string_view sText) const {
    const std::string line = qncomm::WithoutControls(sText) + '\n';
    std::cout.write(line.data(), static_cast<std::streamsize>(line.size()));
    Look();
}

void Output::Note(std::string_view sLine) const {
    Aside("qnctl: " + qncomm::DisplayText(sLine));
}

void Output::Aside(std::string_view sLine, std::string_view sEnd) const {
    std::cerr << qncomm::WithoutControls(qncomm::DisplayText(sLine)) << sEnd << std::flush;
}

void Output::Text(std::string_view sText) const {
    std::cout << sText << std::flush;
    Look();
}

void Output::Look() const {
    if (!std::cout && mError == 0) mError = errno != 0 ? errno : EIO;
}

int Output::Error() const {
    std::cout.flush();
    Look();
    return mError;
}

void Output::Table(const std::vector<Align>& columns, const std::vector<Row>& rows) const {
    std::vector<std::size_t> widths(columns.size(), 0);
    for (const Row& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], WidthOf(row[i]));
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string gap(widths[i] - WidthOf(row[i]), ' ');
            line += (i > 0 ? "  " : "");
            line += columns[i] == Align::Right ? gap + row[i] : row[i] + gap;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        Line(line);
    }
}

void Output::Failure(const Outcome& outcome) const {
    const std::string message = qncomm::DisplayText(outcome.message);
    if (mJson) {
        Json error{
            {"number", outcome.number}, {"source", outcome.source}, {"description", message}};
        if (!outcome.place.empty()) error["place"] = outcome.place;
        if (!outcome.line.state.empty())
            error.update({{"state", outcome.line.state}, {"settings", outcome.line.settings}});
        std::cerr << TextOf(Json{{"error", error}}) << std::endl;
        return;
    }
    const std::string place = outcome.place.empty() ? "" : outcome.place + ": ";
    if (outcome.status == ExitStatus::Error && outcome.number != 0) {
        Note(place + "error " + std::to_string(outcome.number) + ": " + message + " ["
             + outcome.source + "]");
        return;
    }
    // Made here, and may have several lines; what they name may come from elsewhere.
    std::istringstream lines("qnctl: " + place + message);
    for (std::string line; std::getline(lines, line);)
        Aside(line);
}

} // namespace qnctl
