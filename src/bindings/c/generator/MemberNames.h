#pragma once

#include "automation/SurfaceClass.h"

#include <string>
#include <vector>

namespace qncomm::bindings {

/// A class whose members a host can call, as the interfaces in other languages number it.
struct CallableClass {
    int number;         ///< in QN_MEMBER; never changes
    const char* name;   ///< in the table
    const char* header; ///< that documents it, below src/
    const char* prefix; ///< of its functions in C, behind "qn_"
};

/// All of them.
const std::vector<CallableClass>& CallableClasses();

/// The member as its header names it: what sets a property is "Set" and the property's name.
std::string DeclaredName(const SurfaceMember& member);

} // namespace qncomm::bindings
