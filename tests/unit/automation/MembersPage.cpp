#include "MembersPage.h"

#include "automation/SurfaceClass.h"
#include "control/QNComm.h"

#include <array>
#include <string_view>
#include <vector>

namespace qncomm {
namespace {

using Cells = std::vector<std::string>;

std::string RowOf(const Cells& cells) {
    std::string row = "|";
    for (const std::string& cell : cells)
        row += ' ' + cell + " |";
    return row + '\n';
}

std::string HeadOf(const Cells& cells) {
    std::string rule = "|";
    for (std::size_t i = 0; i < cells.size(); ++i)
        rule += "---|";
    return '\n' + RowOf(cells) + rule + '\n';
}

/// The word for a type, or the class of the object with a link to its section.
std::string TypeText(MemberType type, std::string_view object) {
    if (object.empty()) return std::string(WordFor(type));
    std::string anchor;
    for (const char c : object)
        anchor += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    const std::string link = '[' + std::string(object) + "](#" + anchor + ')';
    return type == MemberType::Records ? "collection of " + link : link;
}

/// Such as "**ref** sDev *printer text*"; "= …" for what is taken when it is left out.
std::string TextOf(const MemberParameter& parameter) {
    std::string text;
    if (parameter.byReference) text = parameter.writtenBack ? "**out** " : "**ref** ";
    text += std::string(parameter.name) + " *" + TypeText(parameter.type, parameter.object) + '*';
    if (parameter.byDefault) {
        const std::string byDefault(*parameter.byDefault);
        text += " = " + (byDefault.empty() ? "\"\"" : byDefault);
    }
    return text;
}

std::string TextOf(const std::vector<MemberParameter>& parameters) {
    std::string text;
    for (const MemberParameter& parameter : parameters)
        text += (text.empty() ? "" : ", ") + TextOf(parameter);
    return text;
}

std::string Fields(const SurfaceClass& of) {
    std::string text = HeadOf({"id", "field", "type"});
    for (const SurfaceMember& row : of.members)
        text += RowOf(
            {std::to_string(row.id), std::string(row.name), TypeText(row.result, row.object)});
    return text;
}

std::string Members(const SurfaceClass& of) {
    std::string text = HeadOf({"id", "kind", "member", "arguments", "result", "needs"});
    for (const SurfaceMember& row : of.members)
        text += RowOf({std::to_string(row.id), std::string(WordFor(row.kind)),
                       '`' + std::string(row.name) + '`', TextOf(row.parameters),
                       TypeText(row.result, row.object), std::string(WordFor(row.needs))});
    return text;
}

std::string Events(const SurfaceClass& of) {
    if (of.events.empty()) return {};
    std::string text = HeadOf({"id", "event", "arguments"});
    for (const SurfaceEvent& row : of.events)
        text += RowOf(
            {std::to_string(row.id), '`' + std::string(row.name) + '`', TextOf(row.parameters)});
    return text;
}

std::string Section(const SurfaceClass& of) {
    std::string text = "\n## " + std::string(of.name) + '\n';
    if (!of.isRecord) return text + Members(of) + Events(of);
    text += "\nA record";
    for (const std::string_view& field : of.keyedBy)
        text.append(&field == of.keyedBy.data() ? "; its key in a collection is " : ":")
            .append(field);
    text += ".\n";
    return text + Fields(of);
}

std::string Properties() {
    static constexpr std::array<std::string_view, 5> types{"boolean", "integer", "long", "text",
                                                           "font"};
    static constexpr std::array<std::string_view, 3> uses{
        "always", "at design time", "always; a property bag is given it, but not asked for it"};
    std::string text =
        "\nA property bag keeps these, in this order:\n" + HeadOf({"property", "type", "counts"});
    for (const ControlProperty& property : QNComm::Properties())
        text += RowOf({std::string(property.name),
                       std::string(types.at(static_cast<std::size_t>(property.type))),
                       std::string(uses.at(static_cast<std::size_t>(property.use)))});
    return text;
}

constexpr std::string_view Head = R"(# The members of the surface

What a host can call by name, written from the table in `src/automation`; what each member does and raises stands in the
class's header. `build/bin/members_page > docs/members.md` writes this page anew.

**id** names a member within its class and never changes; reading and setting a property are one id. **ref** is passed
by reference, **out** as well, and what the member (of an event: the handler) made of it comes back; everything else is
passed by value. What follows `=` is taken when the argument is left out. A collection has items in their order, found by
a position from 1 or by their key in any case; records are values, which stay as they are when the printer is asked
again.

| word | what it is |
|---|---|
| *boolean* | `True` or `False`; numbers other than 0 are `True` |
| *integer*, *long*, *single* | a whole number of 16 bits, of 32 bits, a number with a fraction |
| *printer text* | 8-bit text as it travels on the line |
| *text* | UTF-8: a path or a word of this machine |
| *key* | a text, or a position from 1 |
| *names* | a list of printer texts |
| needs *nothing* | the object alone answers |
| needs *printer* | claims the port and searches for the printer, unless the host holds a claim |
| needs *fresh claim* | the same, but the host must have given its own claim back |
| needs *open port* | the port is open, as it is while the control is shown |
| needs *free port* | searches itself or needs no printer; the host must have given its own claim back |
)";

} // namespace

std::string MembersPage() {
    std::string page(Head);
    for (const SurfaceClass* of : SurfaceClasses()) {
        page += Section(*of);
        if (of == &ControlClass()) page += Properties();
    }
    return page;
}

} // namespace qncomm
