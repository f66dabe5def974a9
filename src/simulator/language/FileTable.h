#pragma once

// The files that a program has open, by their numbers.

#include "language/Machine.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace qnsim {

class FileTable {
  public:
    explicit FileTable(Machine& machine) : mMachine(machine) {}

    /// mode: 'I' input, 'O' output, 'A' append. A path such as "UART1:" is a serial channel.
    Error Open(int number, std::string_view path, char mode);
    Error Write(int number, std::string_view bytes);
    /// Reads up to the next line end, or up to the next comma outside quotes as well.
    struct Reading {
        std::string text;
        Error error = Error::None;
    };
    Reading ReadLine(int number);
    Reading ReadField(int number);
    Error Close(int number);
    void CloseAll();

    /// The number of a serial channel's name such as "uart2:"; absent for any other name.
    static std::optional<int> Channel(std::string_view path);

  private:
    struct OpenFile {
        std::string path;
        char mode;
        int channel; ///< 0 = a file
        std::string content;
        std::size_t at = 0;
    };
    OpenFile* Find(int number, bool forInput, Error& error);

    Machine& mMachine;
    std::map<int, OpenFile> mFiles;
};

} // namespace qnsim
