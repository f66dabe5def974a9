#pragma once

#include "automation/SurfaceClass.h"

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace qncomm {

class QNComm;

/// What a member is called on. Cheap to make for one call.
class SurfaceObject {
  public:
    /// A control, and its link (clsDataLink) and command layer (clsQuorin) with it: the member's
    /// row says which of the three it belongs to. The control must outlive this object, and may be
    /// destroyed by the host while a call runs, as QNComm says.
    SurfaceObject(QNComm& control) : mControl(&control) {}
    /// A settings object or a record, as a member has returned it.
    explicit SurfaceObject(Variant value) : mValue(std::move(value)) {}

    /// The control. Raises 438 for a settings object or a record.
    QNComm& Control() const;
    /// The settings object. Raises 438 for anything else.
    RegSettings& Settings() const;
    /// The record. Raises 438 for anything else.
    const Variant::Record& Record() const;

  private:
    QNComm* mControl = nullptr;
    Variant mValue;
};

/// What a call brings back.
struct MemberOutcome {
    Variant result;              ///< nothing for a method without a result
    Variant::Record writtenBack; ///< what came back through parameters, by name, in their order
};

/// The member of that name (in any case) that takes so many arguments; when none of the name does,
/// the first one. Raises 438 for an unknown name.
const SurfaceMember& FindMember(const SurfaceClass& of, std::string_view sName,
                                std::size_t arguments);

/// Raises what CallMember raises before the member runs; except for one argument too many the
/// description ends with ": " and the parameter's name.
void CheckArguments(const SurfaceMember& member, const std::vector<Variant>& arguments);

/// Converts the arguments to what the member takes and calls it; nothing in the place of an
/// argument leaves it out. Raises 13 for an argument of a wrong type, 6 for a number that does not
/// fit, 449 for one that is missing and 450 for one too many, all before the member runs, and 438
/// for an object of another class; then what the member raises.
MemberOutcome CallMember(const SurfaceObject& object, const SurfaceMember& member,
                         const std::vector<Variant>& arguments);

/// The event of that name, in any case. Raises 438 for an unknown name.
const SurfaceEvent& FindEvent(const SurfaceClass& of, std::string_view sName);

/// Connects a handler to an event for as long as the returned object lives; that may outlive the
/// object whose event it is. Raises 91 for a link or a command layer that the control does not have
/// (at design time and after TearDown), and 438 for an object of another class.
[[nodiscard]] Subscription ConnectEvent(const SurfaceObject& object, const SurfaceEvent& event,
                                        EventHandler handler);

/// An item of a collection: by its position from 1, or by its key in any case. The reference is
/// valid as long as the list. Raises 9 for a position that is not there, 5 for a key that is not
/// there and 13 for an index that is neither.
const Variant& ItemOf(const Variant::List& collection, const SurfaceClass& of,
                      const Variant& index);

} // namespace qncomm
