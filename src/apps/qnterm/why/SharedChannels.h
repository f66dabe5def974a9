#pragma once

#include "serial/ByteChannel.h"
#include "serial/PDQComm.h"

#include <map>
#include <memory>
#include <string>

namespace qnterm {

struct SharedChannel;

/// One channel for each address, for all that open it one after the other: a virtual printer of
/// this program lives in its channel, and who looks at the line has to find the printer that the
/// control has spoken to.
class SharedChannels {
  public:
    /// Makes channels that lead to the shared one of their address. It and what it makes may
    /// outlive this object. All are given the same reactor; a channel whose shared one is open
    /// finds it busy.
    qncomm::ChannelFactory Factory() const;

  private:
    using Known = std::map<std::string, std::shared_ptr<SharedChannel>>;

    std::shared_ptr<Known> mKnown = std::make_shared<Known>();
};

} // namespace qnterm
