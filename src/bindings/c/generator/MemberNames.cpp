#include "MemberNames.h"

namespace qncomm::bindings {

const std::vector<CallableClass>& CallableClasses() {
    static const std::vector<CallableClass> classes{
        {1, "QNComm", "control/include/control/QNComm.h", ""},
        {2, "clsQuorin", "printer/include/printer/clsQuorin.h", "clsQuorin_"},
        {3, "clsDataLink", "link/include/link/clsDataLink.h", "clsDataLink_"},
        {4, "RegSettings", "common/include/common/RegSettings.h", "RegSettings_"}};
    return classes;
}

std::string DeclaredName(const SurfaceMember& member) {
    return (member.kind == MemberKind::Set ? "Set" : "") + std::string(member.name);
}

} // namespace qncomm::bindings
