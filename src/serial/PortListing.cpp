#include "serial/PortListing.h"

#include <array>
#include <utility>

namespace qncomm {

std::vector<PortListing> ListPorts(const PortBindings& bindings) {
    std::vector<PortListing> rows;
    for (const PortBinding& binding : bindings.List()) {
        PortStatus status = binding.address.kind->look(binding.address.text);
        rows.push_back({binding, status.state, std::move(status.detail)});
    }
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
