#pragma once

#include "common/HostFiles.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace qncomm {

/// Sends long data in pieces and tells the progress before each: "Downloading " and a name, the
/// percentage, and -1 once it is through. It always runs to the end.
class ChunkSender {
  public:
    using Send = std::function<void(std::string_view bytes)>;
    /// It may change the message for the rest of the sending.
    using Report = std::function<void(std::string& message, std::int16_t progress)>;

    ChunkSender(Send send, Report report);

    /// Sends as many bytes as the file held when it was opened, under its path as the name.
    void SendFile(HostFile& file) const;
    void SendText(std::string_view sName, std::string_view sText) const;

  private:
    using NextPiece = std::function<std::string(std::size_t from, std::size_t bytes)>;
    void SendPieces(std::string_view name, std::uintmax_t length, const NextPiece& next) const;

    Send mSend;
    Report mReport;
};

} // namespace qncomm
