#pragma once

#include "FdChannel.h"
#include "TtyErrorCounts.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <termios.h>

namespace qncomm {

/// A tty of this machine, held for this program alone while it is open.
///
/// A pseudo-terminal is a tty without modem lines. It takes any settings, keeps of them what it
/// can, and hands bytes over at once: there is no line on which they could wait, and taking them
/// back would lose what the other side is about to read.
class TtyChannel final : public FdChannel {
  public:
    /// How to look at a device's counts of line errors.
    using CountErrors = std::function<std::optional<TtyErrorCounts>(int fd)>;

    /// Where the device is now; empty when it is not there.
    using Locate = std::function<std::string()>;

    TtyChannel(Reactor& reactor, std::string sPath, CountErrors count = ErrorCountsOf);
    /// A device that is looked for at each opening: it may come back under another name.
    TtyChannel(Reactor& reactor, Locate locate, CountErrors count = ErrorCountsOf);
    ~TtyChannel() override { Close(); }
    TtyChannel(const TtyChannel&) = delete;
    TtyChannel& operator=(const TtyChannel&) = delete;

    IoResult Open(const LineSettings& settings) override;
    void Close() override;
    IoResult Probe() override;
    void Keep(bool bOn) override;
    IoResult Configure(const LineSettings& settings) override;
    IoResult SetBreak(bool bOn) override;
    LineErrors TakeLineErrors() override;
    std::size_t OutputPending() override;
    void DiscardInput() override;
    void DiscardOutput() override;
    std::optional<bool> Dsr() override;

  protected:
    ssize_t Put(std::string_view bytes) override;

  private:
    IoResult Apply(int fd, const LineSettings& settings) const;

    Locate mLocate;
    std::string mPath; ///< of the last opening
    CountErrors mCountErrors;
    std::optional<TtyErrorCounts> mErrorCounts; ///< at the last look; nothing = it does not count
    termios mFormer{};
    bool mHasLines = false;
    bool mKeeps = false;
    Fd mReserved; ///< this program's mark on the device, from the first opening under Keep on
};

} // namespace qncomm
