#pragma once

#include "MemberArguments.h"
#include "MemberTypes.h"
#include "automation/CallMember.h"
#include "control/QNComm.h"
#include "link/clsDataLink.h"
#include "printer/clsQuorin.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

namespace qncomm {

// What stands between a row of the table and the member that it names: the compiler takes the types
// of the arguments and of the result from the member itself.

/// The C++ object that a member runs on, kept alive for as long as the member runs.
template <class T>
struct Target;

template <>
struct Target<QNComm> {
    explicit Target(const SurfaceObject& of) : object(of.Control()) {}
    QNComm& object;
};

template <>
struct Target<clsQuorin> {
    explicit Target(const SurfaceObject& of)
        : running(of.Control().Hold()), object(of.Control().Layer()) {}
    std::shared_ptr<const void> running;
    clsQuorin& object;
};

template <>
struct Target<clsDataLink> {
    explicit Target(const SurfaceObject& of)
        : running(of.Control().Hold()), object(of.Control().Link()) {}
    std::shared_ptr<const void> running;
    clsDataLink& object;
};

template <>
struct Target<RegSettings> {
    explicit Target(const SurfaceObject& of) : object(of.Settings()) {}
    RegSettings& object;
};

/// What a member looks like: one of a class, or a function whose first parameter is the object.
template <class Member>
struct MemberShape;
template <class T, class R, class... Args>
struct MemberShape<R (*)(T&, Args...)> {
    using Object = T;
    using Result = std::remove_cvref_t<R>;
    using Arguments = std::tuple<Args...>; ///< as declared
    using Positions = std::index_sequence_for<Args...>;
};
template <class T, class R, class... Args>
struct MemberShape<R (T::*)(Args...)> : MemberShape<R (*)(T&, Args...)> {};
template <class T, class R, class... Args>
struct MemberShape<R (T::*)(Args...) const> : MemberShape<R (*)(T&, Args...)> {};

/// Whether a value comes back through a parameter that is declared so.
template <class Declared>
inline constexpr bool IsGivenBack =
    std::is_lvalue_reference_v<Declared> && !std::is_const_v<std::remove_reference_t<Declared>>;

inline TextKind KindOf(MemberType text) {
    return text == MemberType::HostText ? TextKind::Host : TextKind::Line;
}

template <class Declared, class Value>
void GiveBack(MemberArguments& arguments, std::size_t at, const Value& value,
              const SurfaceMember& self) {
    if constexpr (IsGivenBack<Declared>)
        arguments.GiveBack(at, Shown<Value>::To(value, KindOf(self.parameters[at].type)));
}

template <auto member, std::size_t... I>
Variant CallWith(const SurfaceObject& on, const SurfaceMember& self, MemberArguments& arguments,
                 std::index_sequence<I...> /*positions*/) {
    using Shape = MemberShape<decltype(member)>;
    using Declared = typename Shape::Arguments;
    const Target<typename Shape::Object> target(on);
    auto values = std::make_tuple(
        Shown<std::remove_cvref_t<std::tuple_element_t<I, Declared>>>::From(arguments.At(I))...);
    const auto call = [&]() -> decltype(auto) {
        return std::invoke(member, target.object, std::get<I>(values)...);
    };
    Variant result;
    if constexpr (std::is_void_v<typename Shape::Result>)
        call();
    else
        result = Shown<typename Shape::Result>::To(call(), KindOf(self.result));
    (GiveBack<std::tuple_element_t<I, Declared>>(arguments, I, std::get<I>(values), self), ...);
    return result;
}

/// Calls the member with the arguments as they are.
template <auto member>
Variant Call(const SurfaceObject& on, const SurfaceMember& self, MemberArguments& arguments) {
    return CallWith<member>(on, self, arguments,
                            typename MemberShape<decltype(member)>::Positions());
}

} // namespace qncomm
