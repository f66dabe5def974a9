#pragma once

#include "EventCall.h"
#include "MemberCall.h"
#include "automation/SurfaceClass.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace qncomm::rows {

// The words in which the tables of the classes are written. A row names the member; kinds of
// arguments and results come from the member itself, and a row with too many or too few parameters
// does not compile.

using Needs = MemberNeeds;
using Rows = std::vector<SurfaceMember>;

/// A parameter as a row writes it: what the member's own type does not say.
struct Parameter {
    std::string_view name;
    bool hostText = false;
    std::optional<std::string_view> byDefault = {};
    std::optional<bool> byReference = {}; ///< where the class has another rule

    /// May be left out; the default is written as text.
    constexpr Parameter Or(std::string_view text) const {
        Parameter changed = *this;
        changed.byDefault = text;
        return changed;
    }
    constexpr Parameter ByValue() const { return Passed(false); }
    constexpr Parameter ByReference() const { return Passed(true); }

  private:
    constexpr Parameter Passed(bool reference) const {
        Parameter changed = *this;
        changed.byReference = reference;
        return changed;
    }
};

/// Texts of the line, numbers, lists and objects.
constexpr Parameter In(std::string_view name) {
    return {.name = name};
}
/// Texts of this machine: paths, names of its own.
constexpr Parameter Path(std::string_view name) {
    return {.name = name, .hostText = true};
}
/// Whether something is to be done; not, when it is left out.
constexpr Parameter Flag(std::string_view name) {
    return In(name).Or("False");
}

/// How a class of the surface declares the parameters of its methods: the control passes texts and
/// truth values by reference, link and command layer everything.
template <class T>
constexpr bool ByReference(MemberType type) {
    const bool textOrFlag = type == MemberType::PrinterText || type == MemberType::HostText
                            || type == MemberType::Boolean;
    if constexpr (std::is_same_v<T, QNComm>) return textOrFlag;
    return !std::is_same_v<T, RegSettings>;
}

template <class Object, class Declared>
MemberParameter ParameterOf(const Parameter& row) {
    constexpr ShownType shown = Shown<std::remove_cvref_t<Declared>>::type;
    MemberParameter parameter{row.name, shown.type, shown.object, row.byDefault};
    if (row.hostText) parameter.type = MemberType::HostText;
    parameter.writtenBack = IsGivenBack<Declared>;
    parameter.byReference =
        parameter.writtenBack || row.byReference.value_or(ByReference<Object>(parameter.type));
    return parameter;
}

/// The parameters of Member, a row's word for each.
template <class Member, class... Parameters>
std::vector<MemberParameter> ParametersOf(const Parameters&... parameters) {
    using Shape = MemberShape<Member>;
    using Declared = typename Shape::Arguments;
    static_assert(sizeof...(Parameters) == std::tuple_size_v<Declared>,
                  "a row names each parameter of its member");
    return [&]<std::size_t... I>(std::index_sequence<I...>) {
        return std::vector<MemberParameter>{
            ParameterOf<typename Shape::Object, std::tuple_element_t<I, Declared>>(parameters)...};
    }
    (typename Shape::Positions());
}

template <auto member, class... Parameters>
SurfaceMember Row(std::int32_t id, std::string_view name, MemberKind kind, Needs needs,
                  const Parameters&... parameters) {
    constexpr ShownType result = Shown<typename MemberShape<decltype(member)>::Result>::type;
    return {id,
            name,
            kind,
            needs,
            result.type,
            result.object,
            ParametersOf<decltype(member)>(parameters...),
            &Call<member>};
}

template <auto member, class... Parameters>
SurfaceMember Method(std::int32_t id, std::string_view name, Needs needs,
                     const Parameters&... parameters) {
    return Row<member>(id, name, MemberKind::Method, needs, parameters...);
}

template <auto member, class... Parameters>
SurfaceMember Get(std::int32_t id, std::string_view name, Needs needs,
                  const Parameters&... parameters) {
    return Row<member>(id, name, MemberKind::Get, needs, parameters...);
}

/// What a property is set to is passed by value.
template <auto member>
SurfaceMember Set(std::int32_t id, std::string_view name, const Parameter& value) {
    return Row<member>(id, name, MemberKind::Set, Needs::Nothing, value.ByValue());
}

/// A result that is a text of this machine.
inline SurfaceMember HostText(SurfaceMember row) {
    row.result = MemberType::HostText;
    return row;
}

/// The rows of all parts of a table in their order.
inline Rows AllOf(std::initializer_list<Rows> parts) {
    Rows all;
    for (const Rows& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

} // namespace qncomm::rows
