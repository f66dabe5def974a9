#pragma once

#include "Outcome.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace qnctl {

using Json = nlohmann::ordered_json;

/// The program's two streams: results on the standard output, as text or as one JSON document, and
/// what went wrong on the error stream.
class Output {
  public:
    explicit Output(bool json) : mJson(json) {}

    /// Whether results are to be a JSON document.
    bool IsJson() const { return mJson; }

    /// The command's one document, on a line of its own.
    void Document(const Json& document) const;

    /// A line of text (UTF-8) without its end; control characters are shown, not sent.
    void Line(std::string_view sText) const;

    /// A line for the error stream, behind the program's name; control characters are shown.
    void Note(std::string_view sLine) const;

    /// The same without the program's name. A terminal that is typed at raw wants "\r\n" for an
    /// end.
    void Aside(std::string_view sLine, std::string_view sEnd = "\n") const;

    /// Text of the printer's as it is, at once.
    void Text(std::string_view sText) const;

    /// What the system said when the standard output took no more (errno), after all that was shown
    /// has been handed to it; 0 as long as it took everything.
    int Error() const;

    /// Rows in columns as wide as their widest cell, two blanks apart.
    using Row = std::vector<std::string>;
    enum class Align { Left, Right };
    void Table(const std::vector<Align>& columns, const std::vector<Row>& rows) const;

    /// The line or the document that tells how a command failed.
    void Failure(const Outcome& outcome) const;

  private:
    /// Keeps what the system said of the first write that failed; the stream tells no more than
    /// that one did.
    void Look() const;

    bool mJson;
    mutable int mError = 0;
};

} // namespace qnctl
