#pragma once

// A pseudo-terminal that hosts open like a serial device.

#include "endpoints/Endpoint.h"
#include "platform/Fd.h"

#include <deque>
#include <memory>

namespace qnsim {

/// Hosts may come and go: between them the printer runs on and what it says is lost, as on a cable
/// whose other end is open. Of the host's settings the rate and the stop bits are seen; a
/// pseudo-terminal carries no data bits, no parity and no modem lines.
///
/// Settings and bytes come by different ways, so it takes a rule to tell which bytes were sent with
/// which. Settings other than those that stood when a host came are its own. The ones that stood
/// then, seen again at its leaving, are what it put back: its last words were sent with its own.
class PtyEndpoint : public Endpoint {
  public:
    /// Makes a pseudo-terminal and watches it on this loop. link: a name to give the device as
    /// well, replaced when it is a symbolic link already, refused (EEXIST) when it is anything
    /// else, and removed at the end; empty = no other name.
    static OpenedEndpoint Open(qncomm::Reactor& loop, const std::string& link);
    ~PtyEndpoint() override;

    std::string Address() const override { return mLink.empty() ? mDevice : mLink; }
    void Want(bool input, bool output) override;
    void Refresh() override;
    /// A host that left counts as there until its last bytes have been given out.
    bool Connected() const override { return mHost || !mLastWords.empty(); }
    LineFormat HostFormat() const override {
        return mLastWords.empty() ? mFormat : mLastWords.front().format;
    }
    std::vector<HostAction> Receive(std::size_t max) override;
    std::size_t Write(std::string_view bytes) override;

    /// The device itself, "/dev/pts/" and a number, also where a link leads to it.
    const std::string& Device() const { return mDevice; }

  private:
    struct LastWords {
        LineFormat format; ///< with which they were sent
        std::string bytes;
    };

    PtyEndpoint(qncomm::Reactor& loop, qncomm::Fd master, qncomm::Fd notices, std::string device);
    bool MakeLink(const std::string& link);
    LineFormat CurrentFormat() const;
    /// Takes in what the system tells of hosts that opened, wrote and closed.
    void HearOfHosts();
    void FollowHosts();
    void LookAtHost();
    /// Bytes of a host that left, sent with mFormat.
    void KeepLastWords(std::string words);
    /// Whether the host that put the device's settings back closes it now.
    bool Leaves();
    std::string ReadPiece(std::size_t max) const;
    std::string ReadAll();
    /// Whether no host has the device open, or leaves it within the time.
    bool HungUp(int limitMs) const;

    qncomm::Fd mMaster;
    qncomm::Fd mNotices; ///< of hosts that open the device, write to it and close it
    std::unique_ptr<qncomm::FdWatch> mComings; ///< end before the descriptors that they watch
    std::unique_ptr<qncomm::FdWatch> mTraffic;
    std::string mDevice;
    std::string mLink;
    LineFormat mStanding; ///< of the device when no host had it; a host that leaves may put it back
    LineFormat mFormat;   ///< of the host that is there, or was
    std::deque<LastWords> mLastWords; ///< of hosts that left, not yet given out
    bool mHost = false;               ///< one has the device open
    // Heard since the last Refresh, in this order:
    bool mWrote = false; ///< it wrote what may not have been read
    bool mLeft = false;  ///< then a host closed the device
    bool mCame = false;  ///< and the next one opened it
};

} // namespace qnsim
