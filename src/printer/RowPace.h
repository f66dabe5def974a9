#pragma once

#include "link/clsDataLink.h"

#include <cstddef>

namespace qncomm {

/// The pace of work on the rows of a reply, of which a peer may send a million: every so many of
/// them what is due is dispatched, so that a cancel is heard. The link must outlive it.
class RowPace {
  public:
    explicit RowPace(clsDataLink& link) : mLink(link) {}

    /// Before the work on a row. Throws what clsDataLink::DispatchDue throws.
    void Next() {
        if (++mRows % RowsAtOnce == 0) mLink.DispatchDue();
    }

  private:
    static constexpr std::size_t RowsAtOnce = 4096; ///< some milliseconds of work

    clsDataLink& mLink;
    std::size_t mRows = 0;
};

} // namespace qncomm
