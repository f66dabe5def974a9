#include "common/Pointer.h"

namespace qncomm {

Pointer& Pointer::Screen() {
    thread_local Pointer screen;
    return screen;
}

void Pointer::Set(std::int16_t iShape) {
    if (iShape == mShape) return;
    mShape = iShape;
    Changed.Raise(iShape);
}

BusyPointer::BusyPointer() : mFormer(Pointer::Screen().Shape()) {
    Pointer::Screen().Set(PointerHourglass);
}

BusyPointer::~BusyPointer() {
    try {
        Pointer::Screen().Set(mFormer);
    } catch (...) { // NOLINT(bugprone-empty-catch): an error of a host's handler must not escape a
                    // destructor
    }
}

} // namespace qncomm
