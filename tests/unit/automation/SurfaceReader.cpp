#include "SurfaceReader.h"

#include <cctype>
#include <regex>

namespace qncomm::testing {
namespace {

using Match = std::smatch;

/// The text without comments and inline bodies, in one line.
std::string Plain(std::string text) {
    text = std::regex_replace(text, std::regex("//[^\n]*"), "");
    text = std::regex_replace(text, std::regex("\\{[^{};]*;[^{}]*\\}"), ";"); // a body, no value
    return std::regex_replace(text, std::regex("\\s+"), " ");
}

std::string PlainType(std::string type) {
    type = std::regex_replace(type, std::regex("\\b(const|std::|qncomm::)\\s*|[&]"), "");
    type = std::regex_replace(type, std::regex("\\bstd::"), "");
    return std::regex_replace(type, std::regex("^\\s+|\\s+$"), "");
}

DeclaredParameter ParameterOf(const std::string& text) {
    static const std::regex form(R"(^\s*([^=]*[\s&>])(\w+)\s*(?:=\s*(.*?))?\s*$)");
    Match match;
    if (!std::regex_match(text, match, form)) return {"?", text, {}};
    return {PlainType(match[1]), match[2], match[3]};
}

std::vector<DeclaredParameter> ParametersOf(const std::string& list) {
    std::vector<DeclaredParameter> parameters;
    static const std::regex comma(",");
    if (list.find_first_not_of(' ') == std::string::npos) return parameters;
    for (std::sregex_token_iterator part(list.begin(), list.end(), comma, -1), end; part != end;
         ++part)
        parameters.push_back(ParameterOf(*part));
    return parameters;
}

/// The fields of a structure of arguments.
std::vector<DeclaredParameter> FieldsOf(std::string_view header, const std::string& name) {
    const std::size_t from = header.find("struct " + name + " {");
    if (from == std::string_view::npos) return {};
    const std::string text(header.substr(from, header.find("};", from) - from));
    static const std::regex field(R"(\n\s+([\w:]+)\s+(\w+)[^;]*;)");
    std::vector<DeclaredParameter> fields;
    for (std::sregex_iterator match(text.begin(), text.end(), field), end; match != end; ++match)
        fields.push_back({PlainType((*match)[1]), (*match)[2], {}});
    return fields;
}

bool Sets(const std::string& name) {
    return name.size() > 3 && name.starts_with("Set")
           && std::isupper(static_cast<unsigned char>(name[3])) != 0;
}

} // namespace

std::vector<DeclaredMember> DeclaredMembers(std::string_view sHeader, std::string_view sFrom,
                                            std::string_view sTo) {
    const std::size_t from = sHeader.find(sFrom);
    const std::string text = Plain(std::string(sHeader.substr(from, sHeader.find(sTo) - from)));
    static const std::regex function(R"((\w+)\s*\(([^()]*)\)\s*(?:const)?\s*(?:= 0)?\s*;)");
    std::vector<DeclaredMember> members;
    for (std::sregex_iterator match(text.begin(), text.end(), function), end; match != end;
         ++match) {
        const std::string name = (*match)[1];
        DeclaredMember member{Sets(name) ? name.substr(3) : name, Sets(name),
                              ParametersOf((*match)[2])};
        if (member.parameters.size() == 1 && member.parameters[0].type.ends_with("Args"))
            member.parameters = FieldsOf(sHeader, member.parameters[0].type);
        const bool overload = !members.empty() && members.back().name == member.name
                              && members.back().isLet == member.isLet;
        if (!overload) members.push_back(member);
    }
    return members;
}

} // namespace qncomm::testing
