#pragma once

#include "transfer/TransferFiles.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace qncomm::bench {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

// Files of the working folder, for measuring. Names are taken as they come: the bench alone chooses
// them.
class HostSource final : public transfer::FileSource {
  public:
    explicit HostSource(std::vector<std::string> names) : mNames(std::move(names)) {}
    std::optional<transfer::FileInfo> Next() override;
    bool Read(std::uint64_t offset, std::size_t length, std::string& data,
              std::string& sReason) override;
    void Close(bool bWhole) override;

  private:
    std::vector<std::string> mNames;
    std::size_t mNext = 0;
    FileHandle mFile;
};

class HostSink final : public transfer::FileSink {
  public:
    transfer::OfferDecision Offer(const transfer::FileInfo& file) override;
    bool Write(std::uint64_t offset, std::string_view data, std::string& sReason) override;
    bool Close(bool bWhole, std::string& sReason) override;

  private:
    FileHandle mFile;
};

} // namespace qncomm::bench
