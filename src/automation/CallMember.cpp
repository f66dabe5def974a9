#include "automation/CallMember.h"

#include "MemberArguments.h"
#include "Records.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"

#include <algorithm>

namespace qncomm {
namespace {

/// What an object holds, if it holds that.
template <class T>
T& Held(T* held) {
    if (held == nullptr) RaiseRuntimeError(RtNoSuchMember);
    return *held;
}

} // namespace

QNComm& SurfaceObject::Control() const {
    return Held(mControl);
}

RegSettings& SurfaceObject::Settings() const {
    return *Held(mValue.As<std::shared_ptr<RegSettings>>());
}

const Variant::Record& SurfaceObject::Record() const {
    return Held(mValue.As<Variant::Record>());
}

const SurfaceMember& FindMember(const SurfaceClass& of, std::string_view sName,
                                std::size_t arguments) {
    const SurfaceMember* first = nullptr;
    for (const SurfaceMember& member : of.members) {
        if (!EqualNoCase(member.name, sName)) continue;
        if (arguments >= member.LeastArguments() && arguments <= member.parameters.size())
            return member;
        if (first == nullptr) first = &member;
    }
    if (first == nullptr) RaiseRuntimeError(RtNoSuchMember);
    return *first;
}

void CheckArguments(const SurfaceMember& member, const std::vector<Variant>& arguments) {
    const MemberArguments converted(member, arguments);
}

MemberOutcome CallMember(const SurfaceObject& object, const SurfaceMember& member,
                         const std::vector<Variant>& arguments) {
    MemberArguments converted(member, arguments);
    MemberOutcome outcome;
    outcome.result = member.call(object, member, converted);
    outcome.writtenBack = converted.WrittenBack(member);
    return outcome;
}

const SurfaceEvent& FindEvent(const SurfaceClass& of, std::string_view sName) {
    const auto found = std::ranges::find_if(
        of.events, [&](const SurfaceEvent& event) { return EqualNoCase(event.name, sName); });
    if (found == of.events.end()) RaiseRuntimeError(RtNoSuchMember);
    return *found;
}

Subscription ConnectEvent(const SurfaceObject& object, const SurfaceEvent& event,
                          EventHandler handler) {
    return event.connect(object, event, std::move(handler));
}

const Variant& ItemOf(const Variant::List& collection, const SurfaceClass& of,
                      const Variant& index) {
    if (const auto* key = index.As<VariantText>()) {
        const auto found = std::ranges::find_if(collection, [&](const Variant& item) {
            return EqualNoCase(KeyOf(SurfaceObject(item).Record(), of), key->text);
        });
        if (found == collection.end()) RaiseRuntimeError(RtInvalidCall);
        return *found;
    }
    const std::int32_t position = AsLong(index);
    if (position < 1 || static_cast<std::size_t>(position) > collection.size())
        RaiseRuntimeError(RtSubscript);
    return collection[static_cast<std::size_t>(position) - 1];
}

} // namespace qncomm
