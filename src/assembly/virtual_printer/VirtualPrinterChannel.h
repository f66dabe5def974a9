#pragma once

#include "serial/ByteChannel.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// The virtual printer at the end of a line inside this program. The printer stays on while the
/// channel is closed. It runs on the reactor's clock: on writes, in waits, and from an alarm when
/// it has work.
class VirtualPrinterChannel final : public ByteChannel {
  public:
    /// sPrinter is what follows "sim:" in an address and has been checked.
    VirtualPrinterChannel(Reactor& reactor, std::string_view sPrinter);
    ~VirtualPrinterChannel() override;
    VirtualPrinterChannel(const VirtualPrinterChannel&) = delete;
    VirtualPrinterChannel& operator=(const VirtualPrinterChannel&) = delete;

    IoResult Open(const LineSettings& settings) override;
    void Close() override;
    IoResult Probe() override { return {}; }
    IoResult Configure(const LineSettings& settings) override;
    IoResult SetBreak(bool bOn) override;
    IoCount Read(std::span<char> buffer) override;
    IoCount Write(std::string_view bytes) override;
    bool IsReliable() const override { return true; }
    LineErrors TakeLineErrors() override;
    std::size_t OutputPending() override;
    void DiscardInput() override;
    void DiscardOutput() override;
    std::optional<bool> Dsr() override;
    void Want(FdEvents events) override;
    void SetHandler(Handler handler) override { mHandler = std::move(handler); }
    FdEvents Wait(FdEvents events, std::int64_t lLimitUs) override;

  private:
    struct Printer;

    void SetFormat(const LineSettings& settings, std::int64_t now);
    /// Lets the printer work until now and takes what has reached the host.
    void Run();
    void CatchUp(std::int64_t now);
    /// Sets the alarm to when there is something to do.
    void Schedule();
    std::string Obeyed(std::string bytes);
    /// How many bytes the line takes now.
    std::size_t Room() const;
    /// When there is something to do for a host that wants these.
    std::optional<std::int64_t> NextWork(FdEvents wanted) const;
    /// Which of these is so now.
    FdEvents Ready(FdEvents wanted) const;

    Reactor& mReactor;
    std::unique_ptr<Printer> mPrinter;
    std::unique_ptr<Alarm> mAlarm;
    Handler mHandler;
    std::string mReceived; ///< bytes that have reached the host
    FdEvents mWanted;
    bool mOpen = false;
    bool mObeysXon = false; ///< Xon and Xoff from the printer start and stop what is written
    bool mObeysCts = false; ///< the same by the line CTS
    bool mHeld = false;     ///< an Xoff came
};

} // namespace qncomm
