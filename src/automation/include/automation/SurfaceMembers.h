#pragma once

#include "common/Variant.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace qncomm {

class MemberArguments;
class QNComm;

/// The three ways in which a host uses a member.
enum class MemberKind { Method, Get, Let };

/// What a parameter takes and a result is.
enum class MemberType {
    Nothing,     ///< a method without a result
    Boolean,     ///< also "True", "False" and numbers
    Integer,     ///< a whole number of 16 bits
    Long,        ///< a whole number of 32 bits
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
    Nothing,    ///< the control alone answers
    Printer,    ///< claims the port itself; a claim that the host holds spares it the search
    FreshClaim, ///< the same, but a claim that the host holds must end before
    OpenPort,   ///< the port is open, as it is while the control is shown
    FreePort,   ///< looks for the printer itself, or for none; a claim of the host must end before
};

struct MemberParameter {
    std::string_view name;
    MemberType type = MemberType::Nothing;
    /// What is taken when the argument is left out, as text; nothing when it may not be.
    std::optional<std::string_view> byDefault = {};
    bool writtenBack = false; ///< what the member used comes back
};

/// One row of the table of what a host can call.
struct SurfaceMember {
    std::string_view name;
    MemberKind kind = MemberKind::Method;
    MemberNeeds needs = MemberNeeds::Printer;
    MemberType result = MemberType::Nothing;
    std::vector<MemberParameter> parameters;
    Variant (*call)(QNComm& control, MemberArguments& arguments) = nullptr;

    /// How many arguments may not be left out.
    std::size_t LeastArguments() const;
};

/// What a call brings back.
struct MemberOutcome {
    Variant result;
    Variant::Record writtenBack; ///< by parameter, in their order
};

/// Every public member of QNComm in the order of its surface; a property that can be read and set
/// has two rows.
const std::vector<SurfaceMember>& SurfaceMembers();

/// The member of that name (in any case) that takes so many arguments; when none of the name does,
/// the first one. Raises 438 for a name that is none.
const SurfaceMember& FindMember(std::string_view sName, std::size_t arguments);

/// Raises what CallMember raises before the member runs; except for one argument too many the
/// description ends with ": " and the parameter's name.
void CheckArguments(const SurfaceMember& member, const std::vector<Variant>& arguments);

/// Converts the arguments to what the member takes and calls it. Raises 13 for an argument of a
/// wrong type, 6 for a number that does not fit, 449 for one that is missing and 450 for one too
/// many, all before the member runs; then what the member raises.
MemberOutcome CallMember(QNComm& control, const SurfaceMember& member,
                         const std::vector<Variant>& arguments);

} // namespace qncomm
