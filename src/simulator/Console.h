#pragma once

// What the printer's end of the channel does with bytes: echo, line assembly, commands, prompt and
// error lines.

#include "language/Interpreter.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace qnsim {

class Console {
  public:
    Console(Machine& machine, const Faults& faults);

    /// Bytes that the channel has received.
    void Receive(std::string_view bytes) { mInput += bytes; }
    std::size_t Waiting() const { return mInput.size() - mRead; }

    /// Works on what was received, at most so many statements. What it says goes to the machine's
    /// output.
    void Work(int statements);

    /// There is something to do without further input.
    bool Busy() const;

    /// A load waits for bytes.
    bool AwaitsData() const { return mInterpreter.Current() == Interpreter::State::NeedsData; }
    void DataTimedOut();

    /// The file transfer that has the channel, or null.
    const FileTransfer* Transfer() const { return mInterpreter.Transfer(); }

    /// A break condition on the line: what is running and what was typed ahead ends.
    void Break();

  private:
    bool ReadLine();
    void ReadCharacter(char c);
    void Erase();
    void Echo(std::string_view bytes);
    void MakeRoom();
    void Execute();
    void Type(std::string_view text);
    void StoreLine(std::string_view text);
    bool BeginsWithImmediate(std::string_view text) const;
    void ErrorLine(Error error, int line);
    void Settle();
    void Prompt();
    void LookForBreak();

    Machine& mMachine;
    Interpreter mInterpreter;
    bool mEchoes;
    int mErrorOnCommand;
    int mCommands = 0;
    int mModuleLine = 0; ///< lines since IMMEDIATE OFF, empty ones included
    std::string mInput;
    std::size_t mRead = 0;
    std::string mLine;
    bool mLineTooLong = false;
    bool mAfterReturn = false; ///< a line feed right after it belongs to it
};

} // namespace qnsim
