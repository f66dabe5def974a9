#pragma once

#include "automation/SurfaceMember.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace qncomm {

/// A class of the surface with what a host can call, read and hear of its objects.
///
/// Objects of QNComm, clsQuorin and clsDataLink are reached through a control, RegSettings is an
/// object of its own. The others are records: a host gets them as values (a Variant::Record, or a
/// Variant::List of them for a collection), which stay as they are when the printer is asked again.
struct SurfaceClass {
    std::string_view name;                 ///< as C++ and the members' rows name it
    std::vector<SurfaceMember> members;    ///< in the order of the class; a property by rows
    std::vector<SurfaceEvent> events = {}; ///< in the order of their ids
    bool isRecord = false;                 ///< a value, whose members are its fields
    /// Of a record: the fields that make its key in a collection, joined by ":"; none when it is in
    /// no collection.
    std::vector<std::string_view> keyedBy = {};
};

/// The control: every public member of QNComm in the order of its surface.
const SurfaceClass& ControlClass();

/// All classes, the control first.
std::span<const SurfaceClass* const> SurfaceClasses();

/// The class of that name, in any case. Raises 438 for an unknown name.
const SurfaceClass& ClassNamed(std::string_view sName);

} // namespace qncomm
