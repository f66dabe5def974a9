#include "serial/PortListing.h"

#include "TtyProbe.h"

#include <array>

namespace qncomm {
namespace {

PortState StateOf(IoStatus status) {
    switch (status) {
    case IoStatus::Done:
        return PortState::Free;
    case IoStatus::Busy:
        return PortState::Busy;
    case IoStatus::Missing:
        return PortState::Missing;
    default:
        return PortState::Unusable;
    }
}

PortListing Row(const PortBinding& binding) {
    switch (binding.address.kind) {
    case AddressKind::Tcp:
    case AddressKind::Rfc2217:
        return {binding, PortState::Unchecked, {}};
    case AddressKind::Simulator:
        return {binding, PortState::Free, {}};
    case AddressKind::Tty:
        break;
    }
    IoResult probed = ProbeTty(binding.address.path);
    return {binding, StateOf(probed.status), std::move(probed.text)};
}

} // namespace

std::vector<PortListing> ListPorts(const PortBindings& bindings) {
    std::vector<PortListing> rows;
    for (const PortBinding& binding : bindings.List())
        rows.push_back(Row(binding));
    return rows;
}

const char* NameOf(PortState state) {
    static constexpr std::array names{"free", "busy", "missing", "unusable", "unchecked"};
    return names.at(static_cast<std::size_t>(state));
}

const char* NameOf(BindingSource source) {
    static constexpr std::array names{"given", "settings", "machine"};
    return names.at(static_cast<std::size_t>(source));
}

} // namespace qncomm
