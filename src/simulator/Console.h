#pragma once

// What the printer's end of the channel does with bytes: echo, line assembly, commands, prompt and
// error lines.

#include "ConsoleMoods.h"
#include "language/Interpreter.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qnsim {

class Console {
  public:
    /// The moods outlive the console: a restarted printer has a new one and the same moods.
    Console(Machine& machine, const Faults& faults, ConsoleMoods& moods);

    /// Bytes that the channel has received.
    void Receive(std::string_view bytes) { mInput += bytes; }
    std::size_t Waiting() const { return mInput.size() - mRead; }
    /// Loses what waits beyond so many bytes, the last ones.
    void Overrun(std::size_t most);

    /// Works on what was received, at most so many statements. What it says goes to the machine's
    /// output.
    void Work(int statements);

    /// There is something to do without further input.
    bool Busy() const;
    /// When what was put off is due.
    std::optional<Micros> NextDue() const;

    /// A program or a command is being carried out.
    bool Runs() const { return mInterpreter.Current() == Interpreter::State::Running; }

    /// A load waits for bytes.
    bool AwaitsData() const { return mInterpreter.Current() == Interpreter::State::NeedsData; }
    /// How many bytes it waits for; 0 when there is none.
    std::size_t Missing() const { return mInterpreter.Missing(); }
    void DataTimedOut();

    /// The file transfer that has the channel, or null.
    const FileTransfer* Transfer() const { return mInterpreter.Transfer(); }

    /// A break condition on the line: what is running and what was typed ahead ends.
    void Break();

  private:
    /// What is said or carried out when its time has come; no further input is looked at before.
    struct PutOff {
        Micros due = 0;
        std::string words;
        std::string command;
    };

    bool IsPutOff();
    void EndPutOff();
    void BreakPutOff();
    void MakeNoise();
    void Say(std::string_view text);
    bool ReadLine();
    void ReadCharacter(char c);
    void Erase();
    void Echo(std::string_view bytes);
    void MakeRoom();
    void Execute();
    void Type(std::string_view text);
    void CarryOut(std::string_view text);
    void StoreLine(std::string_view text);
    bool BeginsWithImmediate(std::string_view text) const;
    void ErrorLine(Error error, int line);
    void Settle();
    void Prompt();
    void LookForBreak();

    Machine& mMachine;
    ConsoleMoods& mMoods;
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
    std::optional<PutOff> mPutOff;
    std::optional<Micros> mNoiseDue; ///< or when the next line begins, if that is sooner
};

} // namespace qnsim
