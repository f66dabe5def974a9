#pragma once

#include "transfer/TransferFiles.h"

#include <string>
#include <utility>
#include <vector>

namespace qncomm::testing {

using namespace transfer;

struct MemoryFile {
    std::string name;
    std::string content;
};

/// Sends files that stand in memory. Each switch is a failure.
class MemorySource final : public FileSource {
  public:
    explicit MemorySource(std::vector<MemoryFile> files) : mFiles(std::move(files)) {}

    std::optional<FileInfo> Next() override;
    bool Read(std::uint64_t offset, std::size_t length, std::string& data,
              std::string& sReason) override;
    void Close(bool bWhole) override { mClosed.push_back(bWhole); }

    [[nodiscard]] const std::vector<bool>& Closed() const { return mClosed; }

    /// The lowest offset that was read, or the largest number when none was.
    [[nodiscard]] std::uint64_t FirstRead() const { return mFirstRead; }

    bool text = false;
    bool resume = false;
    std::optional<std::uint64_t> failReadAt; ///< fails from this offset on

  private:
    std::vector<MemoryFile> mFiles;
    std::size_t mNext = 0;
    std::uint64_t mFirstRead = ~0ULL;
    std::vector<bool> mClosed;
};

/// Keeps received files in memory; a file that was closed as not whole is kept apart.
class MemorySink final : public FileSink {
  public:
    OfferDecision Offer(const FileInfo& file) override;
    bool Write(std::uint64_t offset, std::string_view data, std::string& sReason) override;
    bool Close(bool bWhole, std::string& sReason) override;

    [[nodiscard]] const std::vector<MemoryFile>& Whole() const { return mWhole; }
    [[nodiscard]] const std::vector<MemoryFile>& Partial() const { return mPartial; }
    [[nodiscard]] const std::vector<FileInfo>& Offered() const { return mOffered; }

    std::string skipName;                     ///< a file of this name is not wanted
    std::string resumeFrom;                   ///< what is already here
    std::optional<std::uint64_t> failWriteAt; ///< the disk is full from this offset on
    bool failClose = false;
    bool gap = false; ///< set when an offset did not follow the one before

  private:
    std::vector<FileInfo> mOffered;
    std::vector<MemoryFile> mWhole;
    std::vector<MemoryFile> mPartial;
    MemoryFile mOpen;
};

/// The same bytes for the same seed.
std::string RandomBytes(std::size_t size, std::uint64_t seed);
/// Lines of words with LF ends.
std::string TextBytes(std::size_t size, std::uint64_t seed);

} // namespace qncomm::testing
