#include "link/HostCall.h"

#include "LinkState.h"

namespace qncomm {

HostCall::HostCall(clsDataLink& link) : mCounted(link.State().hostCalls) {}

} // namespace qncomm
