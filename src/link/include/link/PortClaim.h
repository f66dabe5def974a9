#pragma once

#include <cstdint>

namespace qncomm {

struct LinkState;

/// A counted use of the port, given back when the object ends. It knows its depth (the use count it
/// produced) and gives back only what is still its own: an error that already gave it back leaves
/// nothing to do, and however claims nest the count returns to what it was. Ends before the link
/// does.
class PortClaim {
  public:
    /// A refused claim.
    PortClaim() = default;
    /// Takes the claim over; other is then a refused one.
    PortClaim(PortClaim&& other) noexcept;
    PortClaim& operator=(PortClaim&& other) = delete;

    /// Gives the claim back; an error of an event handler on the way is dropped, since the
    /// destructor may be running because of another one. Release reports it.
    ~PortClaim();

    /// Whether the claim was granted (it may have been given back since).
    explicit operator bool() const { return mLink != nullptr; }

    /// Gives the claim back now; later calls do nothing. Passes on what a handler of PortStateEvent
    /// raises.
    void Release();

    /// Leaves the port claimed beyond this object's life. clsDataLink::ReleasePort must be called
    /// for it later.
    void Detach();

    /// A granted claim: the one that made the use count depth. Only the link makes one.
    PortClaim(LinkState& link, std::int32_t depth, bool exclusive);
    /// The use count that this claim made; 0 for a refused one.
    std::int32_t Depth() const { return mDepth; }

  private:
    LinkState* mLink = nullptr;
    PortClaim* mOuter = nullptr;
    std::int32_t mDepth = 0;
    bool mExclusive = false;
};

} // namespace qncomm
