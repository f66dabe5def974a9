#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm::transfer {

/// A moment or a span on the caller's clock: any clock that never runs backwards, counted from any
/// zero.
using Time = std::chrono::microseconds;

/// What a protocol says about one file. A field that the other side did not send is empty.
struct FileInfo {
    std::string name;                       ///< as it travels; never to be used as a host path
    std::optional<std::uint64_t> size;      ///< bytes
    std::optional<std::int64_t> modified;   ///< seconds since 1970-01-01 00:00 UTC
    std::optional<std::uint32_t> mode;      ///< permission bits
    std::optional<std::uint32_t> filesLeft; ///< files of the batch still to come, this one included
    bool resume = false;       ///< the sender wishes to go on where an earlier try ended
    bool fromAnywhere = false; ///< an offer: the receiver chooses where to begin
    bool compared =
        false;         ///< an offer: the sum of what is here is compared with the sender's first
    bool text = false; ///< line ends are converted on the way
};

/// What an engine asks of its caller. One request stands at a time; it is carried out and then
/// answered.
enum class RequestKind {
    NextFile, ///< sender: which file is next? Answer Ok with `file`, or Skip when the batch is over
    Read,  ///< sender: up to `length` bytes at `offset`. Answer Ok with `data`; empty data is the
           ///< end
    Offer, ///< receiver: `file` is offered. Answer Ok with `offset` to start at (0 unless
           ///< fromAnywhere) and its `sum` where it is compared, Skip, or Failed. Offered once more
           ///< and not fromAnywhere when what is here is not the beginning of the sender's file
    Write, ///< receiver: `data` goes to `offset`. Answer Ok or Failed
    Close, ///< both: the file is over, `whole` says whether it travelled whole. Answer Ok or Failed
};

/// One request; which fields count depends on its kind.
struct Request {
    RequestKind kind = RequestKind::Read; ///< what is asked
    FileInfo file;                        ///< of Offer: what the sender said about the file
    std::uint64_t offset = 0;             ///< bytes, 0-based
    std::size_t length = 0;               ///< bytes
    std::string_view data;                ///< valid until the request is answered
    bool whole = false;                   ///< of Close: every byte of the file has travelled
};

/// How a request went.
enum class AnswerKind {
    Ok,     ///< it was carried out
    Skip,   ///< NextFile: there is none; Offer: the file is not wanted
    Failed, ///< it cannot be carried out, which ends the transfer
};

/// What became of a request; which fields count depends on the request's kind.
struct Answer {
    AnswerKind kind = AnswerKind::Ok; ///< how it went
    FileInfo file;                    ///< to NextFile
    std::uint64_t offset = 0;         ///< to Offer: bytes that the caller already has
    std::uint32_t sum = 0;            ///< to Offer: their CRC-32, where it is compared
    std::string_view data;            ///< to Read; copied by the engine
    std::string reason;               ///< to Failed: a text for the person
};

/// Where a transfer stands.
enum class Phase {
    Idle,     ///< not started
    Starting, ///< finding the other side and agreeing on terms
    Opening,  ///< a file is announced
    Moving,   ///< its bytes are on the way
    Closing,  ///< its end, or the end of the session, is being agreed on
    Over,     ///< nothing more will be asked or said except the output that still waits
};

/// How a transfer ended.
enum class Outcome {
    Running,        ///< it has not
    Success,        ///< every file travelled or was left out by one side
    Failed,         ///< for a reason that Reason tells
    CancelledHere,  ///< by TransferEngine::Cancel
    CancelledThere, ///< by the other side
};

/// How far a transfer is.
struct Progress {
    /// Of the current file: agreed on by both sides, or written; sent where they are not
    /// acknowledged. It falls back when damage is found among those.
    std::uint64_t bytes = 0;
    std::optional<std::uint64_t> size; ///< of the current file
    std::uint32_t files = 0;           ///< that travelled whole
    std::uint32_t skipped = 0;         ///< that one side did not want
    std::uint32_t repairs = 0;         ///< times that damage was found and made good
};

} // namespace qncomm::transfer
