#pragma once

#include "common/Event.h"
#include "common/Variant.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace qncomm {

class MemberArguments;
class SurfaceObject;

/// The three ways in which a host uses a member.
enum class MemberKind {
    Method, ///< calls it
    Get,    ///< reads a property
    Set,    ///< sets a property: its only argument, or its last, is the value
};

/// What a parameter takes and a result is.
enum class MemberType {
    Nothing,     ///< a method without a result
    Boolean,     ///< also "True", "False" and numbers
    Integer,     ///< a whole number of 16 bits
    Long,        ///< a whole number of 32 bits
    Single,      ///< a number that may have a fraction
    PrinterText, ///< 8-bit text of the line
    HostText,    ///< UTF-8: a path or a word of this machine
    KeyIndex,    ///< a text or a position
    Names,       ///< a list of printer texts; as one text they are separated by ","
    Font,        ///< a record of Name and Size; as one text "NAME,SIZE"
    Settings,    ///< a settings object
    Records,     ///< a list of records
};

/// What a host must have done before it calls the member.
enum class MemberNeeds {
    Nothing,    ///< the object alone answers
    Printer,    ///< claims the port itself and searches for the printer, unless the host already
                ///< holds a claim
    FreshClaim, ///< the same, but the host must have given its own claim back
    OpenPort,   ///< the port is open, as it is while the control is shown
    FreePort,   ///< searches for the printer itself, or needs none; the host must have given its
                ///< own claim back
};

/// One parameter of a member or of an event.
struct MemberParameter {
    std::string_view name;                 ///< as the class declares it
    MemberType type = MemberType::Nothing; ///< what it takes
    /// The class of the object that it takes or, of Records, of each record; empty for plain
    /// values.
    std::string_view object = {};
    /// What is taken when the argument is left out, as text; nothing when it may not be left out.
    std::optional<std::string_view> byDefault = {};
    /// Whether the surface declares it by reference: a host in a language that tells the two apart
    /// passes a variable.
    bool byReference = false;
    /// Whether the member gives back a value through it. Only ever true of one by reference.
    bool writtenBack = false;
};

/// One row of the table of what a host can call. Lives as long as the program.
struct SurfaceMember {
    /// Names the member within its class, from 1, and never changes from one version to the next.
    /// The two rows of a property that can be read and set share it.
    std::int32_t id = 0;
    std::string_view name;                    ///< as the class declares it; a property by its own
    MemberKind kind = MemberKind::Method;     ///< how it is used
    MemberNeeds needs = MemberNeeds::Printer; ///< what must be done before
    MemberType result = MemberType::Nothing;  ///< what it returns
    /// The class of the object that it returns or, of Records, of each record; empty for plain
    /// values.
    std::string_view object = {};
    std::vector<MemberParameter> parameters = {}; ///< in the order of the arguments
    /// Runs it on an object of its class with arguments that are already converted. CallMember
    /// calls this.
    Variant (*call)(const SurfaceObject& object, const SurfaceMember& self,
                    MemberArguments& arguments) = nullptr;

    /// How many arguments may not be left out.
    std::size_t LeastArguments() const;
};

/// Hears an event: its arguments in the order of the row's parameters. What it puts in the place of
/// one by reference goes back to whoever raised the event; a value of another type raises 13 there.
using EventHandler = std::function<void(std::vector<Variant>& arguments)>;

/// An event that a host can hear. Lives as long as the program.
struct SurfaceEvent {
    std::int32_t id = 0;   ///< names the event within its class; never changes
    std::string_view name; ///< as the class declares it
    std::vector<MemberParameter> parameters = {}; ///< none has a default
    /// Connects a handler to the event of an object of its class. ConnectEvent calls this.
    Subscription (*connect)(const SurfaceObject& object, const SurfaceEvent& self,
                            EventHandler handler) = nullptr;
};

/// The word for a kind in listings and documents: "method", "get", "let".
std::string_view WordFor(MemberKind kind);
/// The word for a type, such as "printer text"; empty for Nothing.
std::string_view WordFor(MemberType type);
/// The words for a need, such as "open port"; "nothing" for Nothing.
std::string_view WordFor(MemberNeeds needs);

} // namespace qncomm
