#pragma once

#include "transfer/TransferEngine.h"

namespace qncomm::transfer {

/// Where a sender's files come from. The implementation owns what it opens.
class FileSource {
  public:
    virtual ~FileSource() = default;
    /// The next file of the batch, opened; empty when there is none.
    virtual std::optional<FileInfo> Next() = 0;
    /// Up to `length` bytes at `offset` into `data`; empty at the end. Returns false with a reason
    /// on failure.
    virtual bool Read(std::uint64_t offset, std::size_t length, std::string& data,
                      std::string& sReason) = 0;
    /// The open file is over; `whole` when the other side has all of it.
    virtual void Close(bool bWhole) = 0;
};

/// What a receiver's caller decides about an offered file.
struct OfferDecision {
    AnswerKind kind = AnswerKind::Ok; ///< Ok takes it, Skip leaves it out, Failed ends the session
    std::uint64_t offset = 0;         ///< bytes that are already here and need not travel again
    std::uint32_t sum = 0;            ///< the CRC-32 of these bytes, where the offer is compared
    std::string reason;               ///< of Failed, for a person
};

/// Where a receiver's files go. The remote's name is advice; the implementation alone chooses a
/// path.
class FileSink {
  public:
    virtual ~FileSink() = default;
    /// A file is offered. After Ok it is open, and its bytes come by Write. The open file may be
    /// offered once more, not fromAnywhere: what was here is not its beginning and worthless.
    virtual OfferDecision Offer(const FileInfo& file) = 0;
    /// Returns false with a reason on failure. Offsets rise without gaps from the one that Offer
    /// chose.
    virtual bool Write(std::uint64_t offset, std::string_view data, std::string& sReason) = 0;
    /// The file is over. When `whole`, true means that it stands under its name; else what was
    /// written is not a file.
    virtual bool Close(bool bWhole, std::string& sReason) = 0;
};

/// Carries out and answers requests until none stands. A sender's engine uses `source`, a
/// receiver's `sink`; the other may be null. A request that nobody can carry out is answered
/// Failed.
void ServeRequests(TransferEngine& engine, FileSource* source, FileSink* sink, Time now);

/// As TransferEngine::Output, with the requests served that stand between the engine and its next
/// bytes.
std::string_view ServedOutput(TransferEngine& engine, FileSource* source, FileSink* sink, Time now);

} // namespace qncomm::transfer
