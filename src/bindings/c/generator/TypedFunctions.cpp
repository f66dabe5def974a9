// Each member as a function with the types of C. The table of types below is all that it needs to
// know of them.

#include "TypedFunctions.h"

#include <array>
#include <string_view>

namespace qncomm::bindings {
namespace {

/// A type of the table in C; "@" stands for the name of the parameter.
struct TypeInC {
    MemberType type;
    std::string_view in;     ///< how it is passed
    std::string_view given;  ///< as a qn_value
    std::string_view out;    ///< how it comes back
    std::string_view member; ///< which of a qn_value comes back; empty: all of it
    std::string_view outIn;  ///< what points to it, as a qn_value, when it goes in as well
};

constexpr std::string_view AnyValue = "@ ? *@ : qn_nothing()";

constexpr std::array Types{
    TypeInC{MemberType::Boolean, "int @", "qn_boolean(@)", "int *@", "boolean",
            "@ ? qn_boolean(*@) : qn_nothing()"},
    TypeInC{MemberType::Integer, "int16_t @", "qn_integer(@)", "int16_t *@", "integer",
            "@ ? qn_integer(*@) : qn_nothing()"},
    TypeInC{MemberType::Long, "int32_t @", "qn_integer(@)", "int32_t *@", "integer",
            "@ ? qn_integer(*@) : qn_nothing()"},
    TypeInC{MemberType::Single, "double @", "qn_real(@)", "double *@", "real",
            "@ ? qn_real(*@) : qn_nothing()"},
    TypeInC{MemberType::PrinterText, "const char *@", "qn_text(@)", "const char **@", "text.bytes",
            "@ ? qn_text(*@) : qn_nothing()"},
    TypeInC{MemberType::HostText, "const char *@", "qn_text(@)", "const char **@", "text.bytes",
            "@ ? qn_text(*@) : qn_nothing()"},
    TypeInC{MemberType::KeyIndex, "const qn_value *@", AnyValue, "qn_value *@", "", AnyValue},
    TypeInC{MemberType::Names, "const qn_value *@", AnyValue, "qn_value *@", "", AnyValue},
    TypeInC{MemberType::Font, "const qn_value *@", AnyValue, "qn_value *@", "", AnyValue},
    TypeInC{MemberType::Settings, "qn_settings *@", "qn_store(@)", "qn_value *@", "", AnyValue},
    TypeInC{MemberType::Records, "const qn_value *@", AnyValue, "qn_value *@", "", AnyValue},
};

const TypeInC& InC(MemberType type) {
    for (const TypeInC& row : Types)
        if (row.type == type) return row;
    return Types.back();
}

std::string For(std::string_view pattern, std::string_view name) {
    std::string text;
    for (const char c : pattern)
        if (c == '@')
            text += name;
        else
            text += c;
    return text;
}

std::string NameOf(const CallableClass& of, const SurfaceMember& member) {
    return of.prefix + DeclaredName(member);
}

std::string NumberOf(const CallableClass& of, const SurfaceMember& member) {
    return "QN_MEMBER(" + std::to_string(of.number) + ", "
           + std::to_string(static_cast<int>(member.kind)) + ", " + std::to_string(member.id) + ")";
}

bool HasObject(const CallableClass& of) {
    return of.name == std::string_view("RegSettings");
}

/// Such as "int qn_Files(qn_control *control, const char *sDeviceName, …)".
std::string SignatureOf(const CallableClass& of, const SurfaceMember& member) {
    std::string text = "int qn_" + NameOf(of, member) + "(qn_control *control";
    if (HasObject(of)) text += ", qn_settings *object";
    for (const MemberParameter& parameter : member.parameters) {
        const TypeInC& type = InC(parameter.type);
        text += ", " + For(parameter.writtenBack ? type.out : type.in, parameter.name);
    }
    if (member.result != MemberType::Nothing) text += ", " + For(InC(member.result).out, "result");
    return text + ")";
}

/// What a caller in C has to know of the arguments beyond their types.
std::string RemarksOf(const SurfaceMember& member) {
    std::string text;
    for (const MemberParameter& parameter : member.parameters) {
        const std::string name(parameter.name);
        if (parameter.byDefault)
            text += "/// " + name + ": usually "
                    + (parameter.byDefault->empty() ? "NULL" : std::string(*parameter.byDefault))
                    + ".\n";
        if (parameter.writtenBack) text += "/// *" + name + ": what the member made of it.\n";
        if (!parameter.object.empty())
            text += "/// " + name + ": " + std::string(parameter.object) + ".\n";
    }
    if (member.result == MemberType::Records)
        text += "/// *result: a list of " + std::string(member.object) + ".\n";
    return text;
}

std::string DeclarationOf(const CallableClass& of, const SurfaceMember& member,
                          const HeaderComments& comments) {
    std::string text = "\n";
    if (const auto found = comments.find(DeclaredName(member)); found != comments.end())
        for (const std::string& line : found->second)
            text += "/// " + line + "\n";
    return text + RemarksOf(member) + SignatureOf(of, member) + ";\n";
}

/// The records that lists consist of.
std::string RecordsText() {
    std::string text = "\n// The fields of the records:\n//\n";
    for (const SurfaceClass* of : SurfaceClasses()) {
        if (!of->isRecord) continue;
        text += "//   " + std::string(of->name) + ":";
        for (const SurfaceMember& field : of->members)
            text += " " + std::string(field.name) + " (" + std::string(WordFor(field.result)) + ")";
        text += "\n";
    }
    return text;
}

std::string ArgumentsOf(const CallableClass& of, const SurfaceMember& member) {
    std::string text;
    if (HasObject(of)) text += "qn_store(object)";
    for (const MemberParameter& parameter : member.parameters) {
        const TypeInC& type = InC(parameter.type);
        text += (text.empty() ? "" : ", ")
                + For(parameter.writtenBack ? type.outIn : type.given, parameter.name);
    }
    return text;
}

/// "    if (NAME) *NAME = …;" for what comes back.
std::string TakingBack(MemberType type, std::string_view name, const std::string& value) {
    const TypeInC& row = InC(type);
    std::string text = "    if (@) *@ = " + value;
    if (!row.member.empty()) text += ".as." + std::string(row.member);
    if (type == MemberType::Integer) {
        const std::size_t sign = text.find("= ") + 2;
        text = text.substr(0, sign) + "static_cast<int16_t>(" + text.substr(sign) + ")";
    }
    return For(text, name) + ";\n";
}

std::string DefinitionOf(const CallableClass& of, const SurfaceMember& member) {
    const std::string arguments = ArgumentsOf(of, member);
    const std::size_t count = member.parameters.size() + (HasObject(of) ? 1 : 0);
    const bool hasResult = member.result != MemberType::Nothing;
    std::string text = "\n" + SignatureOf(of, member) + " {\n";
    if (count > 0) text += "    qn_value arguments[] = {" + arguments + "};\n";
    if (hasResult) text += "    qn_value value = qn_nothing();\n";
    text += "    const int status = qn_call_id(control, QN_" + NameOf(of, member) + ", "
            + (count > 0 ? "arguments" : "nullptr") + ", " + std::to_string(count) + ", "
            + (hasResult ? "&value" : "nullptr") + ");\n    if (status != QN_OK) return status;\n";
    for (std::size_t i = 0; i < member.parameters.size(); ++i)
        if (member.parameters[i].writtenBack)
            text += TakingBack(member.parameters[i].type, member.parameters[i].name,
                               "arguments[" + std::to_string(i) + "]");
    if (hasResult) text += TakingBack(member.result, "result", "value");
    return text + "    return status;\n}\n";
}

constexpr std::string_view Head = R"(/// @file
/// The members of the control, one function each. Written from the table of members.
///
/// Each returns a qn_status, like qn_call_id with the number of the member. Texts end with a NUL; one
/// that is left out is NULL. Texts, lists and records that come back are the library's, as qn_value
/// says. A result that is not wanted is NULL; so is what would come back through an argument, which
/// is left out then. What a member "raises" is the error of a call that has failed.
#ifndef QNCOMM_MEMBERS_H
#define QNCOMM_MEMBERS_H

#include <qncomm/qncomm.h>

#ifdef __cplusplus
extern "C" {
#endif
)";

constexpr std::string_view Foot = R"(
#ifdef __cplusplus
}
#endif

#endif
)";

} // namespace

std::string MembersHeader(const CommentsOfClass& comments) {
    std::string text(Head);
    text += RecordsText() + "\n/// The numbers of the members, for qn_call_id.\nenum qn_member {\n";
    for (const CallableClass& of : CallableClasses())
        for (const SurfaceMember& member : ClassNamed(of.name).members)
            text += "    QN_" + NameOf(of, member) + " = " + NumberOf(of, member) + ",\n";
    text.erase(text.size() - 2, 1);
    text += "};\n";
    for (const CallableClass& of : CallableClasses()) {
        const HeaderComments all = comments(of);
        text += "\n// -- " + std::string(of.name) + "\n";
        for (const SurfaceMember& member : ClassNamed(of.name).members)
            text += DeclarationOf(of, member, all);
    }
    return text + std::string(Foot);
}

std::string MembersSource() {
    std::string text = "#include <qncomm/members.h>\n";
    for (const CallableClass& of : CallableClasses())
        for (const SurfaceMember& member : ClassNamed(of.name).members)
            text += DefinitionOf(of, member);
    return text;
}

} // namespace qncomm::bindings
