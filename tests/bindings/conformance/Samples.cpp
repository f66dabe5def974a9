// Writes the members with the arguments of the calls that the doors are held to, the events, and
// the names of the functions in C. All of it is made of the table of members alone.
//
//   conformance_samples calls|events|functions

#include "automation/CallMember.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>

namespace {

using namespace qncomm;
using Json = nlohmann::ordered_json;

const Json Font{{"Name", "Mono"}, {"Size", 9.5}};
const Json Store = Json::object();
const Json Empty = Json::array();

constexpr std::string_view Refused = "refused value"; ///< before the member runs
constexpr std::string_view Unknown = "unknown value"; ///< only the member can tell

/// What a parameter of a type is given: as it should be, of another type, and of the type but
/// wrong (nothing when there is no such value).
struct SampleOfType {
    MemberType type;
    Json good;
    Json wrongType;
    Json wrongValue = {};
    std::string_view form = Refused; ///< of the wrong value
};

const std::array Samples{
    SampleOfType{MemberType::Boolean, true, "perhaps"},
    SampleOfType{MemberType::Integer, 1, "perhaps", 70000},
    SampleOfType{MemberType::Long, 1, "perhaps", 3e9},
    SampleOfType{MemberType::Single, 9.5, "perhaps"},
    SampleOfType{MemberType::PrinterText, "c:SAMPLE.PRG", Empty, "nada:X", Unknown},
    SampleOfType{MemberType::HostText, "sample.prg", Empty, "nowhere/sample.prg", Unknown},
    SampleOfType{MemberType::KeyIndex, 1, Empty, 99, Unknown},
    SampleOfType{MemberType::Names, Json::array({"SAMPLE.PRG"}), 7, Json::array({Empty})},
    SampleOfType{MemberType::Font, Font, "no font", Json{{"Name", "Mono"}, {"Size", -1.0}}},
    SampleOfType{MemberType::Settings, Store, "no store"},
    SampleOfType{MemberType::Records, Empty, "no records", Json::array({7})},
};

/// Better values for what many members call the same.
const std::array<std::pair<std::string_view, Json>, 20> ByName{{
    {"sDeviceName", "c:"},
    {"sDev", "c:"},
    {"sDevice", "c:"},
    {"sDevName", "c:"},
    {"sText", "PRINT 6*7"},
    {"sEcho", "PRINT 6*7"},
    {"sSetupKey", "PRINT DEFS,BEEP"},
    {"sImageName", "sample.pcx"},
    {"sFontName", "SW030RSN"},
    {"sModuleText", "10 END"},
    {"sHeader", "10 REM"},
    {"sValue", "ON"},
    {"sSection", "Section"},
    {"sKey", "Key"},
    {"lTimeout", 50},
    {"lMilliseconds", 20},
    {"bManual", false},
    {"iProtocol", 0}, // none: the far side of a transfer is not waited for
    {"bCancel", false},
    {"sDestination", "copy.prg"},
}};

const SampleOfType& SampleFor(MemberType type) {
    for (const SampleOfType& sample : Samples)
        if (sample.type == type) return sample;
    return Samples.front();
}

Json Good(const MemberParameter& parameter) {
    for (const auto& [name, value] : ByName)
        if (name == parameter.name) return value;
    return SampleFor(parameter.type).good;
}

/// All arguments as they should be, with one in the place of another.
Json With(const SurfaceMember& member, std::size_t at, const Json& value) {
    Json arguments = Json::array();
    for (const MemberParameter& parameter : member.parameters)
        arguments.push_back(arguments.size() == at ? value : Good(parameter));
    return arguments;
}

Json ByItsNameAlone(const SurfaceMember& member) {
    Json arguments = With(member, member.parameters.size(), nullptr);
    for (std::size_t i = 0; i + 1 < arguments.size(); ++i)
        if (member.parameters[i].byDefault) arguments[i] = nullptr;
    return arguments;
}

/// Whether it waits long for a far side that does not come: it is called once, then.
bool WaitsForFarSide(const SurfaceMember& member) {
    return std::ranges::count(member.parameters, "iProtocol", &MemberParameter::name) > 0;
}

/// The arguments of one call after another: the wrong ones first, so that nothing has changed yet.
Json CallsOf(const SurfaceClass& of, const SurfaceMember& member) {
    const std::size_t all = member.parameters.size();
    const std::size_t least = member.LeastArguments();
    const Json good = With(member, all, nullptr);
    Json calls = Json::array();
    const auto add = [&](std::string_view form, Json arguments) {
        calls.push_back({{"form", form}, {"arguments", std::move(arguments)}});
    };
    for (std::size_t i = 0; i < all; ++i) {
        const MemberParameter& parameter = member.parameters[i];
        const SampleOfType& sample = SampleFor(parameter.type);
        add("wrong type", With(member, i, sample.wrongType));
        const bool known = sample.form == Refused || !WaitsForFarSide(member);
        if (!sample.wrongValue.is_null() && known)
            add(sample.form, With(member, i, sample.wrongValue));
        if (!parameter.byDefault) add("missing", With(member, i, nullptr));
    }
    // One more than a property has for reading sets it.
    if (&FindMember(of, member.name, all + 1) == &member) {
        Json tooMany = good;
        tooMany.push_back("more");
        add("too many", std::move(tooMany));
    }
    add("given", good);
    if (least == all || WaitsForFarSide(member)) return calls;
    add("left out", Json(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(least)));
    if (all > 1) add("by name", ByItsNameAlone(member));
    return calls;
}

Json ParametersOf(const SurfaceMember& member) {
    Json parameters = Json::array();
    for (const MemberParameter& parameter : member.parameters)
        parameters.push_back(
            {{"name", parameter.name},
             {"type", WordFor(parameter.type)},
             {"default", parameter.byDefault ? Json(*parameter.byDefault) : Json()},
             {"back", parameter.writtenBack}});
    return parameters;
}

void WriteCalls() {
    for (const SurfaceClass* of : SurfaceClasses()) {
        if (of->isRecord) continue;
        for (const SurfaceMember& member : of->members)
            std::cout << Json{{"member",
                               {{"class", of->name},
                                {"name", member.name},
                                {"kind", WordFor(member.kind)},
                                {"result", WordFor(member.result)},
                                {"parameters", ParametersOf(member)}}},
                              {"needs", WordFor(member.needs)},
                              {"waits", WaitsForFarSide(member)},
                              {"calls", CallsOf(*of, member)}}
                      << "\n";
    }
}

void WriteEvents() {
    for (const SurfaceClass* of : SurfaceClasses())
        for (const SurfaceEvent& event : of->events)
            std::cout << of->name << '.' << event.name << "\n";
}

void WriteFunctions() {
    for (const SurfaceClass* of : SurfaceClasses()) {
        if (of->isRecord) continue;
        const std::string prefix = of == &ControlClass() ? "" : std::string(of->name) + "_";
        for (const SurfaceMember& member : of->members)
            std::cout << "FUNCTION(\"" << of->name << '.' << member.name << '.'
                      << WordFor(member.kind) << "\", " << prefix
                      << (member.kind == MemberKind::Set ? "Set" : "") << member.name << ")\n";
    }
}

} // namespace

int main(int argc, char** argv) {
    static constexpr std::array<std::pair<std::string_view, void (*)()>, 3> writers{
        {{"calls", WriteCalls}, {"events", WriteEvents}, {"functions", WriteFunctions}}};
    for (const auto& [name, write] : writers)
        if (argc == 2 && argv[1] == name) return write(), 0;
    return 2;
}
