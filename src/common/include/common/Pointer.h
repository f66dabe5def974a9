#pragma once

#include "common/Event.h"

#include <cstdint>

namespace qncomm {

/// The screen's mouse pointer as the system sees it: a shape number that doubles as its busy flag.
enum PointerShape : std::int16_t {
    PointerDefault = 0,    ///< the desktop's own: nothing runs
    PointerHourglass = 11, ///< busy: an operation runs
};

/// The pointer of the user-interface thread that calls. A face shows it on the desktop; the system
/// never asks a toolkit whether it is busy.
class Pointer {
  public:
    /// The one pointer of the calling thread: two hosts on two threads do not see each other's.
    static Pointer& Screen();

    /// The shape that was set last, PointerDefault at first.
    std::int16_t Shape() const noexcept { return mShape; }

    /// Stores the shape and raises Changed when it differs.
    void Set(std::int16_t iShape);

    /// The new shape.
    Event<std::int16_t> Changed;

  private:
    std::int16_t mShape = PointerDefault;
};

/// Shows the hourglass while it lives and puts the former shape back.
class BusyPointer {
  public:
    BusyPointer();
    ~BusyPointer();
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;

  private:
    std::int16_t mFormer;
};

} // namespace qncomm
