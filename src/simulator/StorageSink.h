#pragma once

// Files that arrive by a transfer, on their way into the printer's storage.

#include "Storage.h"

#include "transfer/TransferFiles.h"

#include <cstdint>
#include <string>

namespace qnsim {

/// Stores each file on the device that is current when it is offered, whole or not at all, under
/// the last part of the name that travels. A file of that name stays until the new one is whole.
class StorageSink final : public qncomm::transfer::FileSink {
  public:
    explicit StorageSink(Storage& storage) : mStorage(storage) {}

    qncomm::transfer::OfferDecision Offer(const qncomm::transfer::FileInfo& file) override;
    bool Write(std::uint64_t offset, std::string_view data, std::string& sReason) override;
    bool Close(bool bWhole, std::string& sReason) override;

    /// Why the printer refused a file, or None.
    Error Refusal() const { return mRefusal; }

  private:
    bool Refuse(Error error, std::string& sReason);

    Storage& mStorage;
    std::string mPath;
    std::string mContent;
    std::uint64_t mRoom = 0; ///< bytes that the file may have
    bool mText = false;
    Error mRefusal = Error::None;
};

} // namespace qnsim
