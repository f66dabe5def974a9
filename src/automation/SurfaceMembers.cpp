#include "automation/SurfaceMembers.h"

#include "MemberArguments.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"

#include <algorithm>

namespace qncomm {

std::size_t SurfaceMember::LeastArguments() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(parameters, [](const MemberParameter& parameter) {
            return !parameter.byDefault.has_value();
        }));
}

const SurfaceMember& FindMember(std::string_view sName, std::size_t arguments) {
    const SurfaceMember* first = nullptr;
    for (const SurfaceMember& member : SurfaceMembers()) {
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

MemberOutcome CallMember(QNComm& control, const SurfaceMember& member,
                         const std::vector<Variant>& arguments) {
    MemberArguments converted(member, arguments);
    MemberOutcome outcome;
    outcome.result = member.call(control, converted);
    outcome.writtenBack = converted.WrittenBack(member);
    return outcome;
}

} // namespace qncomm
