#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <thread>

/// The other end of a pseudo-terminal: a thread that reads bytes as fast as they come, answers
/// command lines as a printer would and takes the announced payload of a load without looking at
/// it.
class PtyReader {
  public:
    PtyReader();
    /// Closes the line and waits for the thread.
    ~PtyReader();
    PtyReader(const PtyReader&) = delete;
    PtyReader& operator=(const PtyReader&) = delete;

    std::string Path() const;

  private:
    void Serve() const;

    int mMaster;
    int mHolder = -1; ///< keeps the line up while nobody else has it open
    int mStop[2] = {-1, -1};
    std::thread mThread;
};
