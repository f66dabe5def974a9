// Each member as a method or property of Python.

#include "PythonMembers.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>
#include <vector>

namespace qncomm::bindings {
namespace {

struct TypeInPython {
    MemberType type;
    std::string_view name;
};

constexpr std::array PythonTypes{
    TypeInPython{MemberType::Nothing, "None"},
    TypeInPython{MemberType::Boolean, "bool"},
    TypeInPython{MemberType::Integer, "int"},
    TypeInPython{MemberType::Long, "int"},
    TypeInPython{MemberType::Single, "float"},
    TypeInPython{MemberType::PrinterText, "str"},
    TypeInPython{MemberType::HostText, "str"},
    TypeInPython{MemberType::KeyIndex, "Union[int, str]"},
    TypeInPython{MemberType::Names, "Sequence[str]"},
    TypeInPython{MemberType::Settings, "Optional[Settings]"},
};

std::string TypeName(MemberType type, std::string_view object) {
    if (type == MemberType::Records) return "Collection[" + std::string(object) + "]";
    if (type == MemberType::Font) return std::string(object);
    const auto* const found = std::ranges::find(PythonTypes, type, &TypeInPython::type);
    return std::string(found->name);
}

bool IsUpper(char c) {
    return c >= 'A' && c <= 'Z';
}

/// A parameter's name without the letters that say its type: "sDeviceName" is device_name.
std::string ArgumentName(std::string_view name) {
    const auto upper = std::ranges::find_if(name, IsUpper);
    const std::string_view prefix = name.substr(0, static_cast<std::size_t>(upper - name.begin()));
    static constexpr std::array<std::string_view, 6> prefixes{"s", "b", "i", "l", "c", "col"};
    if (upper != name.end() && std::ranges::find(prefixes, prefix) != prefixes.end())
        return SnakeName(name.substr(prefix.size()));
    return name == "brefresh" ? "refresh" : SnakeName(name);
}

std::string DefaultText(const MemberParameter& parameter) {
    const std::string text(*parameter.byDefault);
    const bool isText =
        parameter.type == MemberType::PrinterText || parameter.type == MemberType::HostText;
    return isText ? '"' + text + '"' : text;
}

/// The comment as a docstring with this many blanks before it.
std::string DocString(const std::vector<std::string>& lines, std::size_t indent) {
    const std::string blanks(indent, ' ');
    std::string text = blanks + "\"\"\"";
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i > 0) text += "\n" + (lines[i].empty() ? "" : blanks);
        for (const char c : lines[i])
            text += c == '\\' ? "\\\\" : std::string(1, c);
    }
    if (text.ends_with('"')) text += ' '; // a quote before the closing ones
    return (lines.empty() ? text + "See the members' page." : text) + "\"\"\"\n";
}

/// What one class's methods are written of.
class ClassWriter {
  public:
    /// The prefix tells the outcomes of this class's members from those of another.
    ClassWriter(const CallableClass& of, std::string prefix, HeaderComments comments)
        : mOf(of),
          mTable(ClassNamed(of.name)),
          mPrefix(std::move(prefix)),
          mComments(std::move(comments)) {}

    std::string Outcomes() const {
        std::string text;
        for (const SurfaceMember& member : mTable.members)
            if (WritesBack(member)) text += Outcome(member);
        return text;
    }

    std::string Methods() const {
        std::string text;
        for (const SurfaceMember& member : mTable.members) {
            if (member.kind == MemberKind::Set)
                text += Setter(member);
            else if (member.kind == MemberKind::Get && member.parameters.empty())
                text += Property(member);
            else
                text += Method(member);
        }
        return text;
    }

    /// Each member to be awaited: a property by a method of its name, and set by "set_" and it.
    std::string AwaitedMethods() const {
        std::string text;
        for (const SurfaceMember& member : mTable.members)
            text += Awaited(member);
        return text;
    }

  private:
    static bool WritesBack(const SurfaceMember& member) {
        return std::ranges::any_of(member.parameters, &MemberParameter::writtenBack);
    }

    std::string ResultType(const SurfaceMember& member) const {
        if (WritesBack(member)) return mPrefix + std::string(member.name) + "Outcome";
        const std::string name = TypeName(member.result, member.object);
        return member.result == MemberType::Records ? "Optional[" + name + "]" : name;
    }

    std::vector<std::string> Comment(const SurfaceMember& member) const {
        const auto found = mComments.find(DeclaredName(member));
        return found == mComments.end() ? std::vector<std::string>{} : found->second;
    }

    std::string Number(const SurfaceMember& member) const {
        return std::to_string(mOf.number << 16 | static_cast<int>(member.kind) << 12 | member.id);
    }

    /// The tuple that a member with arguments of both ways returns.
    std::string Outcome(const SurfaceMember& member) const {
        std::string text = "\n\nclass " + ResultType(member) + "(NamedTuple):\n    \"\"\"What "
                           + std::string(member.name) + " gives back.\"\"\"\n\n";
        if (member.result != MemberType::Nothing)
            text += "    result: Optional[" + TypeName(member.result, member.object) + "]\n";
        for (const MemberParameter& parameter : member.parameters)
            if (parameter.writtenBack)
                text += "    " + ArgumentName(parameter.name) + ": "
                        + TypeName(parameter.type, parameter.object) + "\n";
        return text;
    }

    std::string CallOf(const SurfaceMember& member) const {
        std::string arguments;
        for (const MemberParameter& parameter : member.parameters)
            arguments += ArgumentName(parameter.name) + ", ";
        const std::string record = member.object.empty() || member.result == MemberType::Settings
                                       ? ""
                                       : ", " + std::string(member.object);
        const std::string call = Number(member) + ", (" + arguments + ")";
        if (!WritesBack(member))
            return (member.needs == MemberNeeds::Nothing ? "self._call(" : "self._wait(") + call
                   + record + ")";
        std::string places;
        for (std::size_t i = 0; i < member.parameters.size(); ++i)
            if (member.parameters[i].writtenBack) places += std::to_string(i) + ", ";
        return ResultType(member) + "(*self._written(" + call + ", (" + places + ")" + record + ")"
               + (member.result == MemberType::Nothing ? "[1:]" : "") + ")";
    }

    static std::string Parameters(const SurfaceMember& member) {
        std::string text = "self";
        for (const MemberParameter& parameter : member.parameters) {
            text += ", " + ArgumentName(parameter.name) + ": "
                    + TypeName(parameter.type, parameter.object);
            if (parameter.byDefault) text += " = " + DefaultText(parameter);
        }
        return text;
    }

    std::string Body(const SurfaceMember& member) const {
        const std::string word = member.result == MemberType::Nothing && !WritesBack(member)
                                     ? "        "
                                     : "        return ";
        return DocString(Comment(member), 8) + word + CallOf(member) + "\n";
    }

    static std::string Alias(const SurfaceMember& member) {
        const std::string name(member.name);
        return SnakeName(name) == name ? "" : "\n    " + name + " = " + SnakeName(name) + "\n";
    }

    std::string Method(const SurfaceMember& member) const {
        return "\n    def " + SnakeName(member.name) + "(" + Parameters(member) + ") -> "
               + ResultType(member) + ":\n" + Body(member) + Alias(member);
    }

    bool IsRead(const SurfaceMember& member) const {
        return std::ranges::any_of(mTable.members, [&](const SurfaceMember& other) {
            return other.kind == MemberKind::Get && other.name == member.name;
        });
    }

    bool IsSet(const SurfaceMember& member) const {
        return std::ranges::any_of(mTable.members, [&](const SurfaceMember& other) {
            return other.kind == MemberKind::Set && other.name == member.name;
        });
    }

    std::string Property(const SurfaceMember& member) const {
        const std::string text = "\n    @property\n    def " + SnakeName(member.name) + "(self) -> "
                                 + ResultType(member) + ":\n" + Body(member);
        return IsSet(member) ? text : text + Alias(member); // the setter follows
    }

    std::string Setter(const SurfaceMember& member) const {
        const std::string name = SnakeName(member.name);
        if (IsRead(member))
            return "\n    @" + name + ".setter\n    def " + name + "(" + Parameters(member)
                   + ") -> None:\n" + Body(member) + Alias(member);
        return "\n    def set_" + name + "(" + Parameters(member) + ") -> None:\n" + Body(member)
               + "\n    Set" + std::string(member.name) + " = set_" + name + "\n";
    }

    std::string Awaited(const SurfaceMember& member) const {
        const bool sets = member.kind == MemberKind::Set;
        const bool reads = member.kind == MemberKind::Get && member.parameters.empty();
        const std::string name = SnakeName(member.name);
        std::string arguments;
        for (const MemberParameter& parameter : member.parameters)
            arguments += ", " + ArgumentName(parameter.name);
        std::string call = "self._member(\"" + name + "\"" + arguments + ")";
        if (reads) call = "self._read(\"" + name + "\")";
        if (sets)
            call = IsRead(member) ? "self.set(\"" + name + "\"" + arguments + ")"
                                  : "self._member(\"set_" + name + "\"" + arguments + ")";
        const bool gives = member.result != MemberType::Nothing || WritesBack(member);
        return "\n    async def " + (sets ? "set_" + name : name) + "(" + Parameters(member)
               + ") -> " + ResultType(member) + ":\n" + DocString(Comment(member), 8) + "        "
               + (gives ? "return " : "") + "await " + call + "\n";
    }

    const CallableClass& mOf;
    const SurfaceClass& mTable;
    std::string mPrefix;
    HeaderComments mComments;
};

/// "(0, 2, )" for the places of what pleases.
template <class Row, class Text>
std::string Tuple(const std::vector<Row>& rows, Text text) {
    std::string all = "(";
    for (const Row& row : rows)
        all += text(row) + ", ";
    return all + ")";
}

std::size_t PlaceOf(const SurfaceClass& of, std::string_view field) {
    const auto found = std::ranges::find(of.members, field, &SurfaceMember::name);
    return static_cast<std::size_t>(found - of.members.begin());
}

std::string RecordClass(const SurfaceClass& of) {
    const std::string name(of.name);
    std::string text = "\n\nclass " + name
                       + "(NamedTuple):\n    \"\"\"A record of the printer or of "
                         "the control, which stays as it is.\"\"\"\n\n";
    for (const SurfaceMember& field : of.members)
        text += "    " + SnakeName(field.name) + ": " + TypeName(field.result, field.object) + "\n";
    return text;
}

/// What the records' classes are to the module's other parts.
std::string RecordTables() {
    std::string text = "\n\n# The names that the system has for the fields of a record.\nFIELDS: "
                       "dict[type, Sequence[str]] = {\n";
    std::string others;
    for (const SurfaceClass* of : SurfaceClasses()) {
        if (!of->isRecord) continue;
        const std::string name(of->name);
        text +=
            "    " + name + ": "
            + Tuple(of->members,
                    [](const SurfaceMember& field) { return '"' + std::string(field.name) + '"'; })
            + ",\n";
        others +=
            name + ".KEY = "
            + Tuple(of->keyedBy,
                    [&](std::string_view field) { return std::to_string(PlaceOf(*of, field)); })
            + "  # type: ignore[attr-defined]\n";
        others += name + ".RECORDS = "
                  + Tuple(of->members,
                          [](const SurfaceMember& field) {
                              return field.object.empty() ? "None" : std::string(field.object);
                          })
                  + "  # type: ignore[attr-defined]\n";
    }
    return text + "}\n# The places of the key in a collection, and the classes of the fields.\n"
           + others;
}

std::string LowerCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](char c) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    });
    return text;
}

std::string EventTable() {
    std::string text = "\n# The names of the arguments of the events.\nEVENTS: dict[str, "
                       "Sequence[str]] = {\n";
    for (const SurfaceClass* of : SurfaceClasses())
        for (const SurfaceEvent& event : of->events)
            text += "    \"" + LowerCase(std::string(of->name) + "." + std::string(event.name))
                    + "\": "
                    + Tuple(event.parameters,
                            [](const MemberParameter& parameter) {
                                return '"' + ArgumentName(parameter.name) + '"';
                            })
                    + ",\n";
    return text + "}\n";
}

constexpr std::string_view ModuleHead =
    R"("""The members of the control and the records that they return, written from the table of members."""

from __future__ import annotations

from collections.abc import Sequence
from typing import Any, NamedTuple, Optional, Union

from ._values import Collection, Settings
)";

constexpr std::string_view Calls = R"(
    def _call(self, member: int, arguments: Sequence[Any] = (), record: Any = None) -> Any:
        raise NotImplementedError

    def _wait(self, member: int, arguments: Sequence[Any] = (), record: Any = None) -> Any:
        raise NotImplementedError

    def _written(
        self, member: int, arguments: Sequence[Any], back: Sequence[int], record: Any = None
    ) -> list[Any]:
        raise NotImplementedError
)";

constexpr std::string_view AwaitedCalls = R"(
    async def _read(self, name: str) -> Any:
        raise NotImplementedError

    async def _member(self, name: str, *arguments: Any) -> Any:
        raise NotImplementedError

    async def set(self, name: str, value: Any) -> None:
        """Sets a property."""
        raise NotImplementedError
)";

} // namespace

std::string SnakeName(std::string_view name) {
    std::string text;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool begins =
            i > 0 && IsUpper(name[i])
            && (!IsUpper(name[i - 1]) || (i + 1 < name.size() && !IsUpper(name[i + 1])));
        if (begins) text += '_';
        text += static_cast<char>(std::tolower(static_cast<unsigned char>(name[i])));
    }
    return text;
}

std::string MembersModule(const CommentsOfClass& comments) {
    std::string text(ModuleHead);
    for (const SurfaceClass* of : SurfaceClasses())
        if (of->isRecord) text += RecordClass(*of);
    text += RecordTables() + EventTable();
    static constexpr std::array<std::string_view, 3> names{"Control", "Layer", "Link"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        const CallableClass& of = CallableClasses().at(i);
        const std::string name(names.at(i));
        const ClassWriter writer(of, i == 0 ? "" : name, comments(of));
        text += writer.Outcomes() + "\n\nclass " + name + "Members:\n    \"\"\"The members of "
                + std::string(of.name) + ".\"\"\"\n" + std::string(Calls) + writer.Methods();
        if (i == 0)
            text += "\n\nclass AwaitedMembers:\n    \"\"\"The members of " + std::string(of.name)
                    + ", each awaited.\"\"\"\n" + std::string(AwaitedCalls)
                    + writer.AwaitedMethods();
    }
    return text;
}

} // namespace qncomm::bindings
