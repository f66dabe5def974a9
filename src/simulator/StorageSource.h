#pragma once

// A file of the printer's storage on its way out.

#include "transfer/TransferFiles.h"

#include <string>

namespace qnsim {

/// A batch of one file. The content is the one that stood when the transfer began.
class StorageSource final : public qncomm::transfer::FileSource {
  public:
    StorageSource(std::string name, std::string content);

    std::optional<qncomm::transfer::FileInfo> Next() override;
    bool Read(std::uint64_t offset, std::size_t length, std::string& data,
              std::string& sReason) override;
    void Close(bool /*bWhole*/) override {}

  private:
    std::string mName;
    std::string mContent;
    bool mGiven = false;
};

} // namespace qnsim
