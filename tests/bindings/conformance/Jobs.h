#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <nlohmann/json.hpp>
#include <string_view>

namespace qncomm::testing {

using Json = nlohmann::ordered_json;

/// What is heard while a call runs. An array of [event, [arguments]], and bytes as characters of
/// the same numbers.
struct Heard {
    Json events = Json::array();
    Json sent = "";
    Json received = "";
};

/// A door of the control with one control behind it. What a call brings back is "result", "back"
/// (what came back through arguments, by name) and "error"; or "unsaid" when the door has no words
/// for it.
class Door {
  public:
    virtual ~Door() = default;
    /// Shows the control, or hides it.
    virtual void Show(bool shown) = 0;
    /// Calls a member with these arguments.
    virtual Json Call(const Json& member, const Json& arguments) = 0;

    Heard heard;
};

/// Makes a control on the job's address for what the job does.
using MakeDoor = std::function<std::unique_ptr<Door>(const Json& job)>;

/// Reads jobs, one a line: an address, a member, what must be done before, and the arguments of one
/// call after another. Writes one line for each with what every call brought back.
void RunJobs(std::istream& in, std::ostream& out, const MakeDoor& make);

/// Bytes as characters of the same numbers.
std::string Characters(std::string_view bytes);

/// The same text at the end of another one.
void Append(Json& text, std::string_view bytes);

/// An error of a call.
Json ErrorDocument(std::int32_t number, std::string_view source, std::string_view description);

} // namespace qncomm::testing
