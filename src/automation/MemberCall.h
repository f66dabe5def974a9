#pragma once

#include "MemberArguments.h"
#include "control/QNComm.h"

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

Variant ValueOf(const clsPrinterFile& file);
Variant ValueOf(const clsPrinterSetupItem& item);
Variant ValueOf(const clsQNModuleError& error);

inline Variant ValueOf(const std::shared_ptr<RegSettings>& settings) {
    return settings ? Variant(settings) : Variant();
}

/// Records in their order; nothing for no collection.
template <class T>
Variant ValueOf(const std::shared_ptr<Collection<std::shared_ptr<T>>>& records) {
    if (!records) return {};
    Variant::List list;
    for (const auto& record : *records)
        list.push_back(ValueOf(*record));
    return Variant(std::move(list));
}

template <class T>
requires std::is_arithmetic_v<T> Variant ValueOf(T value) {
    return value;
}

/// What one of the control's members looks like.
template <class Member>
struct MemberShape;
template <class R, class... Args>
struct MemberShape<R (QNComm::*)(Args...)> {
    using Result = R;
    template <std::size_t I>
    using Argument = std::remove_cvref_t<std::tuple_element_t<I, std::tuple<Args...>>>;
    using Positions = std::index_sequence_for<Args...>;
};
template <class R, class... Args>
struct MemberShape<R (QNComm::*)(Args...) const> : MemberShape<R (QNComm::*)(Args...)> {};

template <auto member, TextKind kind, std::size_t... I>
Variant CallWith(QNComm& control, const MemberArguments& arguments,
                 std::index_sequence<I...> /*positions*/) {
    using Shape = MemberShape<decltype(member)>;
    const auto call = [&]() -> decltype(auto) {
        return std::invoke(member, control,
                           arguments.As<typename Shape::template Argument<I>>(I)...);
    };
    if constexpr (std::is_void_v<typename Shape::Result>) {
        call();
        return {};
    } else if constexpr (std::is_same_v<std::remove_cvref_t<typename Shape::Result>, std::string>) {
        return Variant(call(), kind);
    } else {
        return ValueOf(call());
    }
}

/// Calls the member with the arguments as they are; a text that it returns is of this kind.
template <auto member, TextKind kind = TextKind::Line>
Variant Call(QNComm& control, MemberArguments& arguments) {
    return CallWith<member, kind>(control, arguments,
                                  typename MemberShape<decltype(member)>::Positions());
}

} // namespace qncomm
