#pragma once

#include "SharedChannels.h"

#include "assembly/PortBook.h"
#include "diagnosis/Diagnosis.h"

#include <optional>

namespace qncomm {
class QNCommWidget;
} // namespace qncomm

namespace qnterm {

class Operations;

/// What an examination works with.
struct ExaminationParts {
    Operations& operations;        ///< it is one of them: shown, cancelled, one at a time
    qncomm::QNCommWidget& control; ///< gives the port back meanwhile
    SharedChannels channels;       ///< the control's
};

/// Looks why no printer answers on the control's port, as "qnctl doctor" does, while the window
/// goes on. Nothing is changed, neither on the printer nor in the settings. Nothing when it was
/// refused or cancelled.
std::optional<qncomm::Examined> Examine(const ExaminationParts& parts,
                                        const qncomm::ChosenPort& port,
                                        const qncomm::PortBook& book);

} // namespace qnterm
