#pragma once

#include <QAccessible>
#include <QWidget>

#include <ostream>
#include <string>
#include <vector>

namespace qncomm::testing {

/// What a screen reader says of a field.
struct SpokenField {
    std::string name;
    QAccessible::Role role;
    bool operator==(const SpokenField&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const SpokenField& field) {
    return out << '"' << field.name << "\" (role " << field.role << ')';
}

/// The widget as the accessible tree has it.
SpokenField Spoken(QWidget& widget);

/// What can have the keys in a window, as its accessible tree tells.
struct FocusStops {
    int count = 0;
    std::vector<std::string> nameless; ///< the classes of those without a name or a role
};
FocusStops StopsOf(QWidget& window);

/// The visible captions of the window that have less room than they need.
std::vector<std::string> CutCaptions(QWidget& window);

/// The fields that the Tab key goes through from the one that has the focus, once round, by name.
std::vector<std::string> TabRound(QWidget& window);

/// The captions of the window's visible fields that have no key for use with Alt, or one that
/// another has too. A caption of points has no letter for one.
std::vector<std::string> CaptionsWithoutKey(QWidget& window);

/// The widget that has the focus by its accessible name.
std::string FocusName();

} // namespace qncomm::testing
