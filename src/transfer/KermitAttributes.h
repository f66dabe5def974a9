#pragma once

#include "transfer/TransferTypes.h"

namespace qncomm::transfer {

/// The data of an attribute packet for `file`, at most `room` bytes: what does not fit is left out.
std::string WriteKermitAttributes(const FileInfo& file, std::size_t room);

/// Puts what the packet says into `file`. Unknown attributes are passed over.
void ReadKermitAttributes(std::string_view data, FileInfo& file);

/// The answer to a file that goes on at `offset`, and back.
std::string WriteKermitResume(std::uint64_t offset);
std::optional<std::uint64_t> ReadKermitResume(std::string_view data);

} // namespace qncomm::transfer
