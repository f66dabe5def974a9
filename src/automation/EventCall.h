#pragma once

#include "MemberCall.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace qncomm {

/// What an event of a class looks like.
template <class Member>
struct EventShape;
template <class T, class... Args>
struct EventShape<Event<Args...> T::*> {
    using Object = T;
    using Arguments = std::tuple<Args...>; ///< as declared
    using Positions = std::index_sequence_for<Args...>;

    static Subscription Connect(Event<Args...>& event, const SurfaceEvent& self,
                                EventHandler handler) {
        return event.Connect([&self, handler = std::move(handler)](Args... args) {
            Hand(self, handler, std::forward_as_tuple(args...), Positions());
        });
    }

  private:
    template <std::size_t... I>
    static void Hand(const SurfaceEvent& self, const EventHandler& handler, auto args,
                     std::index_sequence<I...> /*positions*/) {
        std::vector<Variant> values{
            Shown<std::remove_cvref_t<std::tuple_element_t<I, Arguments>>>::To(
                std::get<I>(args), KindOf(self.parameters[I].type))...};
        handler(values);
        (TakeBack<std::tuple_element_t<I, Arguments>>(std::get<I>(args), values.at(I),
                                                      self.parameters[I].type),
         ...);
    }

    template <class Declared>
    static void TakeBack(auto& argument, const Variant& value, MemberType type) {
        if constexpr (IsGivenBack<Declared>)
            argument = Shown<std::remove_cvref_t<Declared>>::From(ConvertedTo(type, value));
    }
};

template <auto event>
Subscription ConnectTo(const SurfaceObject& object, const SurfaceEvent& self,
                       EventHandler handler) {
    using Shape = EventShape<decltype(event)>;
    const Target<typename Shape::Object> target(object);
    return Shape::Connect(target.object.*event, self, std::move(handler));
}

namespace rows {

template <class Declared>
MemberParameter EventParameter(std::string_view name, MemberType texts) {
    MemberParameter parameter{name, Shown<std::remove_cvref_t<Declared>>::type.type};
    if (parameter.type == MemberType::PrinterText) parameter.type = texts;
    parameter.byReference = parameter.writtenBack = IsGivenBack<Declared>;
    return parameter;
}

/// An event; what it passes by reference is what its handlers take by reference.
template <auto event, class... Names>
SurfaceEvent EventRow(std::int32_t id, std::string_view name, MemberType texts,
                      const Names&... names) {
    using Arguments = typename EventShape<decltype(event)>::Arguments;
    static_assert(sizeof...(Names) == std::tuple_size_v<Arguments>,
                  "a row names each parameter of its event");
    const std::array<std::string_view, sizeof...(Names)> all{names...};
    SurfaceEvent row{id, name, {}, &ConnectTo<event>};
    [&]<std::size_t... I>(std::index_sequence<I...>) {
        (row.parameters.push_back(
             EventParameter<std::tuple_element_t<I, Arguments>>(all[I], texts)),
         ...);
    }
    (std::index_sequence_for<Names...>());
    return row;
}

} // namespace rows
} // namespace qncomm
