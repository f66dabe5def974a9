#pragma once

#include "platform/Fd.h"
#include "transfer/TransferFiles.h"

#include <cstdint>
#include <functional>
#include <string>

namespace qncomm {

/// The one host file that a transfer sends.
class SentFile final : public transfer::FileSource {
  public:
    /// nameFor is told the size in bytes, when the file is announced, and asked what it is called
    /// on the other side.
    using NameFor = std::function<std::string(std::uint64_t size)>;

    SentFile(std::string path, bool resume, NameFor nameFor);

    std::optional<transfer::FileInfo> Next() override;
    bool Read(std::uint64_t offset, std::size_t length, std::string& data,
              std::string& sReason) override;
    void Close(bool bWhole) override;

    /// Empty when the file opened; otherwise why it did not.
    const std::string& Refusal() const { return mRefusal; }

  private:
    std::string mPath;
    bool mResume;
    NameFor mNameFor;
    Fd mFile;
    std::string mRefusal;
    bool mGiven = false;
};

} // namespace qncomm
