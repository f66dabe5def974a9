#pragma once

#include "platform/Fd.h"

#include <atomic>
#include <string>
#include <thread>

namespace qncomm::testing {

/// What a host finds at the other end of its line.
enum class FarEnd {
    Printer, ///< what one byte-stream leads to
    Deaf,    ///< something that takes no byte and says none
    Silent,  ///< something that takes all and says nothing
    Talking, ///< something that takes all and talks on, whatever it hears
};

/// A pseudo-terminal that leads to a printer until it turns into something worse.
class TurningLine {
  public:
    /// Leads to the address of a virtual printer's socket, "tcp://127.0.0.1:PORT".
    explicit TurningLine(const std::string& sAddress);
    ~TurningLine();
    TurningLine(const TurningLine&) = delete;
    TurningLine& operator=(const TurningLine&) = delete;

    /// What a host opens.
    const std::string& Path() const { return mPath; }
    /// From now on it is that; who talks says a line, and then nothing for so many ms.
    void Become(FarEnd end, int everyMs = 20);

  private:
    void Run();
    void Turn();

    Fd mHost;
    Fd mPrinter;
    std::string mPath;
    std::atomic<FarEnd> mEnd = FarEnd::Printer;
    std::atomic<int> mEveryMs = 0;
    std::atomic<bool> mStop = false;
    std::thread mThread;
};

} // namespace qncomm::testing
