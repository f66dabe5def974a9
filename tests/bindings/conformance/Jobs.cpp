#include "Jobs.h"

#include <array>
#include <istream>
#include <ostream>
#include <string>
#include <utility>

namespace qncomm::testing {
namespace {

/// The members by which a host gets ready for what a member needs, and whether it shows the
/// control.
struct Readiness {
    std::string_view needs;
    std::string_view calls;
    bool shown = false;
};

constexpr std::array Ready{
    Readiness{"nothing", ""},         Readiness{"free port", ""},
    Readiness{"printer", "PortOpen"}, Readiness{"fresh claim", "PortOpen PortClose"},
    Readiness{"open port", "", true},
};

const Readiness& ReadyFor(const Json& job) {
    const std::string needs = job.at("needs");
    for (const Readiness& row : Ready)
        if (row.needs == needs) return row;
    return Ready.front();
}

Json Heed(Door& door, Json document) {
    Heard heard = std::exchange(door.heard, {});
    document["events"] = std::move(heard.events);
    document["sent"] = std::move(heard.sent);
    document["received"] = std::move(heard.received);
    return document;
}

Json Prepared(Door& door, const Json& job, std::string_view calls) {
    Json documents = Json::array();
    for (const Json& member : job.at("preparing"))
        if (calls.find(std::string(member.at("name"))) != std::string_view::npos)
            documents.push_back(Heed(door, door.Call(member, Json::array())));
    return documents;
}

Json Shown(Door& door, const std::function<Json()>& work) {
    door.Show(true);
    Json document = work();
    door.Show(false);
    return document;
}

Json RunJob(const Json& job, const MakeDoor& make) {
    const Readiness& ready = ReadyFor(job);
    const std::unique_ptr<Door> door = make(job);
    Json documents = Prepared(*door, job, ready.calls);
    for (const Json& arguments : job.at("calls")) {
        const auto work = [&] { return door->Call(job.at("member"), arguments); };
        documents.push_back(Heed(*door, ready.shown ? Shown(*door, work) : work()));
    }
    return documents;
}

} // namespace

void RunJobs(std::istream& in, std::ostream& out, const MakeDoor& make) {
    for (std::string line; std::getline(in, line);)
        out << RunJob(Json::parse(line), make).dump(-1, ' ', true, Json::error_handler_t::replace)
            << std::endl;
}

std::string Characters(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            text += c;
        } else {
            text += static_cast<char>(0xC0U | byte >> 6U);
            text += static_cast<char>(0x80U | (byte & 0x3FU));
        }
    }
    return text;
}

void Append(Json& text, std::string_view bytes) {
    text.get_ref<std::string&>() += Characters(bytes);
}

Json ErrorDocument(std::int32_t number, std::string_view source, std::string_view description) {
    return {{"number", number}, {"source", source}, {"description", description}};
}

} // namespace qncomm::testing
