#pragma once

#include "testing/programs/QnctlFixture.h"

#include <string>

namespace qncomm::testing {

/// Files by the command line, to and from a virtual printer on one of the lines that it serves.
class TransferFixture : public QnctlFixture {
  protected:
    /// Every byte value many times, in an order that its number decides.
    static std::string Content(std::size_t size, unsigned seed = 7);

    /// Starts the virtual printer, which keeps its files in "state", and makes it the port.
    void PrinterOnPty(const Arguments& options = {});
    void PrinterOnTcp(const Arguments& options = {});
    void PrinterOnRemotePort(const Arguments& options = {});
    /// Each run has a printer in its process, with the files that the one before left.
    void PrinterInProcess() { mPort = "sim:R7G?state=" + PathOf("state"); }
    /// The address that Carry uses.
    void SetPort(const std::string& address) { mPort = address; }
    const std::string& Address() const { return mPort; }

    /// The arguments with --port and --settings, as a program of its own each time.
    Arguments OnPort(Arguments arguments) const;
    Ended Carry(const Arguments& arguments) { return Run(OnPort(arguments)); }

    /// The same in a shell that lets no file grow beyond so many KiB; the signal for it stands as
    /// every program finds it.
    Ended RunLimited(int kiB, const Arguments& arguments);

    /// The same with its output in a shell's hands: "> /dev/full", "| head -1". The status is the
    /// program's, not the pipe's.
    Ended RunInto(const std::string& rest, const Arguments& arguments);

    void MakeFolder(const std::string& name) const;
    bool FolderIsEmpty(const std::string& name) const;

    /// Types a line at the printer as a person at a terminal would, and leaves it at that.
    void TypeLine(const std::string& line);

    /// What the printer's file holds, fetched by Kermit.
    std::string PrinterFile(const std::string& name);

    /// Presses Ctrl-C once the transfer has moved bytes.
    Ended Interrupt(const Arguments& arguments);

  private:
    void PrinterOnSocket(const std::string& kind, const Arguments& options);

    std::string mPort;
};

} // namespace qncomm::testing
