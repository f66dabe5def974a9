#pragma once

#include "platform/Fd.h"
#include "testing/line/PtyPair.h"

#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace qncomm::testing {

/// A pseudo-terminal through which a host reaches a device of another one, and on which texts of
/// the device become others: a printer that says what none does.
class BentLine {
  public:
    /// A text as the device says it and what the host hears for it, of the same length.
    using Bend = std::pair<std::string, std::string>;

    /// The device must be there as long as the line.
    BentLine(const std::string& sDevice, std::vector<Bend> bends);
    ~BentLine();
    BentLine(const BentLine&) = delete;
    BentLine& operator=(const BentLine&) = delete;

    /// Where the host opens it.
    const std::string& Path() const { return mHost.path; }

  private:
    void Run() const;
    std::string Bent(std::string text) const;

    PtyPair mHost;
    Fd mHeld;   ///< the host's side, open so that the line outlives each host
    Fd mDevice; ///< of the device
    Fd mStop;
    std::vector<Bend> mBends;
    std::thread mThread;
};

} // namespace qncomm::testing
