#pragma once

namespace qncomm {

/// What the bytes of a text stand for, so that a face or a binding converts them rightly.
enum class TextKind {
    Host, ///< UTF-8: paths and words of this machine
    Line, ///< 8-bit text that goes to the printer as it is
};

} // namespace qncomm
