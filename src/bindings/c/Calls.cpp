// Members by name and number.

#include "Control.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace qncomm::bindings {
namespace {

/// The class before the point of a name, and what is behind it.
std::pair<const SurfaceClass*, std::string_view> Divided(std::string_view name) {
    const std::size_t point = name.find('.');
    if (point == std::string_view::npos) return {&ControlClass(), name};
    return {&ClassNamed(name.substr(0, point)), name.substr(point + 1)};
}

/// The arguments of one call, with the object before them when the class has objects of its own.
struct GivenArguments {
    GivenArguments(const SurfaceClass& of, qn_value* given, std::size_t size)
        : hasObject(&of == &ClassNumbered(4)), values(given), count(size) {
        if (values == nullptr && count > 0) RaiseRuntimeError(RtInvalidCall);
        if (!hasObject) return;
        if (count == 0) RaiseRuntimeError(RtObjectNotSet);
        object = *values++;
        --count;
    }

    SurfaceObject ObjectOf(qn_control& control) const {
        if (!hasObject) return control.assembly->Control();
        if (object.type != QN_SETTINGS || object.as.settings == nullptr)
            RaiseRuntimeError(RtObjectNotSet);
        return SurfaceObject(Variant(object.as.settings->store));
    }

    bool hasObject;
    qn_value object{};
    qn_value* values;
    std::size_t count;
};

std::vector<Variant> Taken(const GivenArguments& given, const SurfaceMember& member,
                           qn_texts texts) {
    if (given.count > member.parameters.size()) RaiseRuntimeError(RtArgumentCount);
    HostValues reader(texts);
    std::vector<Variant> arguments;
    for (std::size_t i = 0; i < given.count; ++i) {
        const MemberParameter& parameter = member.parameters[i];
        arguments.push_back(reader.Taken(given.values[i], parameter.type, parameter.object));
    }
    return arguments;
}

void Call(qn_control& control, const GivenArguments& given, const SurfaceMember& member,
          qn_value* result) {
    const SurfaceObject object = given.ObjectOf(control);
    const std::vector<Variant> arguments = Taken(given, member, control.texts);
    auto returned = std::make_unique<Returned>(control.texts);
    returned->outcome = CallMember(object, member, arguments);
    if (control.freed) return;
    // In place of what a call in a callback has brought back, which nobody looks at any more.
    control.returned = std::move(returned);
    MemberOutcome& outcome = control.returned->outcome;
    auto back = outcome.writtenBack.begin();
    for (std::size_t i = 0; i < member.parameters.size(); ++i) {
        if (!member.parameters[i].writtenBack) continue;
        if (i < given.count) given.values[i] = control.returned->shown.Of(back->second);
        ++back;
    }
    if (result != nullptr) *result = control.returned->shown.Of(outcome.result);
}

const SurfaceMember& MemberNumbered(const SurfaceClass& of, std::int32_t kind, std::int32_t id) {
    const auto found = std::ranges::find_if(of.members, [=](const SurfaceMember& member) {
        return member.id == id && static_cast<std::int32_t>(member.kind) == kind;
    });
    if (found == of.members.end()) RaiseRuntimeError(RtNoSuchMember);
    return *found;
}

/// A host's function, called for an event.
EventHandler HandlerFor(qn_control& control, const SurfaceEvent& event, qn_event_handler handler,
                        void* user) {
    return [&control, &event, handler, user](std::vector<Variant>& arguments) {
        if (control.freed) return;
        Values shown(control.texts);
        std::vector<qn_value> values;
        values.reserve(arguments.size());
        for (const Variant& argument : arguments)
            values.push_back(shown.Of(argument));
        const bool stops = handler(user, values.data(), values.size()) != 0;
        HostValues reader(control.texts);
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const MemberParameter& parameter = event.parameters[i];
            if (!parameter.byReference) continue;
            arguments[i] = reader.Taken(values[i], parameter.type, parameter.object);
            if (stops && parameter.name == "bCancel") arguments[i] = true;
        }
    };
}

} // namespace
} // namespace qncomm::bindings

using namespace qncomm;
using namespace qncomm::bindings;

int qn_call(qn_control* control, const char* member, qn_value* arguments, std::size_t count,
            qn_value* result) {
    return Guarded(control, [=](qn_control& mine) {
        if (member == nullptr) RaiseRuntimeError(RtInvalidCall);
        const auto [of, name] = Divided(member);
        const GivenArguments given(*of, arguments, count);
        Call(mine, given, FindMember(*of, name, given.count), result);
    });
}

int qn_call_id(qn_control* control, std::int32_t member, qn_value* arguments, std::size_t count,
               qn_value* result) {
    return Guarded(control, [=](qn_control& mine) {
        const SurfaceClass& of = ClassNumbered(member >> 16);
        const GivenArguments given(of, arguments, count);
        Call(mine, given, MemberNumbered(of, member >> 12 & 0xF, member & 0xFFF), result);
    });
}

int qn_on(qn_control* control, const char* event, qn_event_handler handler, void* user) {
    return Guarded(control, [=](qn_control& mine) {
        if (event == nullptr) RaiseRuntimeError(RtInvalidCall);
        const auto [of, name] = Divided(event);
        const SurfaceEvent& found = FindEvent(*of, name);
        mine.handlers.erase(&found);
        if (handler == nullptr) return;
        mine.handlers[&found] =
            ConnectEvent(mine.assembly->Control(), found, HandlerFor(mine, found, handler, user));
    });
}
