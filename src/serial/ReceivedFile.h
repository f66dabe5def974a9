#pragma once

#include "platform/DurableFile.h"
#include "serial/TransferPreferences.h"
#include "transfer/TransferFiles.h"

#include <cstdint>
#include <functional>
#include <string>

namespace qncomm {

/// The one host file that a transfer receives. It is written beside its target, and takes the
/// target's place, on the disk, when it is whole; until then whatever stands there stays. The name
/// that the other side tells chooses nothing.
class ReceivedFile final : public transfer::FileSink {
  public:
    /// announced is told the name that travels, once, before the first byte.
    ReceivedFile(std::string path, TransferPreferences preferences,
                 std::function<void(const transfer::FileInfo&)> announced);
    ~ReceivedFile() override;
    ReceivedFile(const ReceivedFile&) = delete;
    ReceivedFile& operator=(const ReceivedFile&) = delete;

    transfer::OfferDecision Offer(const transfer::FileInfo& file) override;
    bool Write(std::uint64_t offset, std::string_view data, std::string& sReason) override;
    bool Close(bool bWhole, std::string& sReason) override;

  private:
    IoResult Open();
    bool MayGoOn(const transfer::FileInfo& file) const;
    IoResult Sum(std::uint32_t& lSum) const;
    IoResult PutInPlace();
    void Abandon();

    std::string mTarget;
    TransferPreferences mPreferences;
    std::function<void(const transfer::FileInfo&)> mAnnounced;
    DurableFile mFile;
    transfer::FileInfo mInfo;
    bool mOffered = false;
};

} // namespace qncomm
