// A virtual printer and a host's transfer engine at the two ends of its line, on one driven clock.
#pragma once

#include "PrinterRig.h"
#include "testing/transfer/MemoryFiles.h"

#include "transfer/TransferEngine.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace qncomm::testing {

using namespace qnsim;

using qncomm::testing::MemoryFile;
using qncomm::testing::MemorySink;
using qncomm::testing::MemorySource;
using qncomm::transfer::Outcome;
using qncomm::transfer::TransferEngine;

/// One protocol: the letter of the printer's statement and the host's engines.
struct Protocol {
    char letter;
    std::unique_ptr<TransferEngine> (*sender)();
    std::unique_ptr<TransferEngine> (*receiver)();
};

extern const Protocol kermit;
extern const Protocol kermitOfSevenBits;
extern const Protocol kermitWithoutSize; // the printer learns the size as the file comes
extern const Protocol zmodem;

class PrinterTransferRig : public PrinterRig {
  public:
    using PrinterRig::PrinterRig;

    /// Gives the printer a command and takes its echo, which must be all that it says before the
    /// transfer's own bytes.
    void Begin(const std::string& command);

    /// Begin with TRANSFER "R", then the host sends the file. Returns the host's outcome.
    Outcome Upload(const Protocol& protocol, const MemoryFile& file);
    Outcome Upload(const Protocol& protocol, MemorySource& source);
    /// Begin with TRANSFER "S", then the host receives into sink.
    Outcome Download(const Protocol& protocol, const std::string& name);

    /// The host's engine works until it is over or the printer has cut the line, then the printer
    /// until it rests.
    void Run(TransferEngine& engine, MemorySource* source, MemorySink* sink);

    /// What the printer said behind the protocol's last byte.
    const std::string& Tail() const { return mTail; }
    /// Called at every step with the host's engine.
    std::function<void(TransferEngine&)> onStep;
    MemorySink sink;
    std::string behindTheEnd; // the host sends this together with its last protocol byte

  private:
    void Hear(TransferEngine& engine, MemorySource* source, MemorySink* into);
    void Speak(TransferEngine& engine, MemorySource* source, MemorySink* into);
    bool PassTime(const TransferEngine& engine);

    std::string mTail;
};

} // namespace qncomm::testing
