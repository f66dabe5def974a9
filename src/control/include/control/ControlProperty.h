#pragma once

#include "common/Variant.h"

#include <string_view>

namespace qncomm {

class QNComm;

/// What a property's value is. Each type's conversion raises 13 for what is no such value and 6 for
/// a number that does not fit.
enum class PropertyType {
    Boolean, ///< True or False; as AsBoolean reads it
    Integer, ///< a whole number of 16 bits
    Long,    ///< a whole number of 32 bits: a colour
    Text,    ///< UTF-8
    Font,    ///< a record of Name and Size, as FontRecord makes it
};

/// When a property counts.
enum class PropertyUse {
    Always,       ///< at design time and at run time
    AtDesignTime, ///< a control that runs takes it from a property bag, shows something of its own
                  ///< instead and ignores that it is set
    NotRead, ///< as Always, but a property bag is only ever given it: it is always stored there
             ///< and never taken from there
};

/// One of the properties that a host sets on a form under design and that a property bag keeps.
///
/// QNComm::Properties lists them. Property bags, widgets, callers by name and documents take them
/// from there; none has a list of its own.
struct ControlProperty {
    std::string_view name;                     ///< as hosts write it
    PropertyType type = PropertyType::Integer; ///< what get returns and set takes
    Variant byDefault;                         ///< its value until someone sets it; of its type
    PropertyUse use = PropertyUse::Always;     ///< when it counts
    /// Where its value is; without it the control keeps the value by the property's name.
    Variant (*get)(const QNComm& control) = nullptr;
    /// Puts a value of its type into effect. May be missing for one that the control only keeps.
    void (*set)(QNComm& control, const Variant& value) = nullptr;
    /// What follows when a host has set it, after the container was told. May be missing.
    void (*changed)(QNComm& control) = nullptr;

    /// The value as one of this property's type; raises 13 or 6 as its type says.
    Variant Converted(const Variant& value) const;
};

} // namespace qncomm
