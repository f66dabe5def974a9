#pragma once

#include "common/RegSettings.h"
#include "common/TextKind.h"

#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace qncomm {

/// A text with what its bytes stand for.
struct VariantText {
    std::string text;               ///< the bytes
    TextKind kind = TextKind::Host; ///< how they are to be read
    bool operator==(const VariantText&) const = default;
};

/// One value of a type that is known only when the program runs: a property in a bag, an argument
/// or a result of a member that is called by its name.
///
/// A text is given explicitly, so that a host can overload a function for texts and for variants;
/// and no pointer turns into True.
struct Variant {
    using Nothing = std::monostate;    ///< no result, or an argument that is left out
    using List = std::vector<Variant>; ///< values in their order
    /// Fields in their order, each with its name.
    using Record = std::vector<std::pair<std::string, Variant>>;
    /// Everything that a variant can hold. A settings object is shared with whoever gave it.
    using Value = std::variant<Nothing, bool, std::int32_t, double, VariantText,
                               std::shared_ptr<RegSettings>, List, Record>;

    /// Nothing.
    Variant() = default;
    /// True or False; nothing but a bool is taken for one.
    Variant(std::same_as<bool> auto bValue) : value(bValue) {}
    /// A 16-bit number is kept as a 32-bit one and equals it.
    Variant(std::same_as<std::int16_t> auto iValue) : value(std::int32_t{iValue}) {}
    /// A 32-bit number.
    Variant(std::same_as<std::int32_t> auto lValue) : value(lValue) {}
    /// A number with a fraction; never equal to a whole number.
    Variant(std::same_as<double> auto dValue) : value(dValue) {}
    /// A text; one of this machine unless it is said to be of the line.
    explicit Variant(std::string_view sText, TextKind kind = TextKind::Host)
        : value(VariantText{std::string(sText), kind}) {}
    /// A settings object, shared with the caller; a null pointer is kept as one.
    explicit Variant(std::shared_ptr<RegSettings> settings) : value(std::move(settings)) {}
    /// Values in their order; the first has the index 0.
    explicit Variant(List list) : value(std::move(list)) {}
    /// Named fields in their order.
    explicit Variant(Record record) : value(std::move(record)) {}

    /// Whether it holds nothing.
    bool IsNothing() const { return std::holds_alternative<Nothing>(value); }
    /// What it holds when that is a T of Value; else a null pointer. Valid until the variant
    /// changes.
    template <class T>
    const T* As() const {
        return std::get_if<T>(&value);
    }
    /// Equal types and contents; a text is not equal to the number that it spells.
    bool operator==(const Variant& other) const;

    Value value; ///< what it holds
};

inline bool Variant::operator==(const Variant& other) const {
    return value == other.value;
}

// Conversions as a host's language makes them. The texts of numbers and Booleans are understood,
// with blanks around them; True is -1 as a number. They raise 13 for what is no such value
// (nothing, a list, a record and an object among them) and 6 for a number that does not fit.

/// A text as ToBoolean reads it; of a number, whether it is not 0.
bool AsBoolean(const Variant& value);
/// The nearest whole number of 16 bits, halves to the even one.
std::int16_t AsInteger(const Variant& value);
/// The nearest whole number of 32 bits, halves to the even one.
std::int32_t AsLong(const Variant& value);
/// The number.
double AsDouble(const Variant& value);
/// A text as it is; a number or a Boolean as ToText writes it.
std::string AsString(const Variant& value);

} // namespace qncomm
