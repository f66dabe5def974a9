#pragma once

#include "transfer/TransferTypes.h"

namespace qncomm::transfer {

/// The content of a ZFILE subpacket: name, NUL, then size, time, mode, serial number and what is
/// left of the batch.
std::string WriteZModemFileInfo(const FileInfo& file);
FileInfo ReadZModemFileInfo(std::string_view content);

} // namespace qncomm::transfer
