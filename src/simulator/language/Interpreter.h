#pragma once

// Runs statements: what was typed, and the program.

#include "FileTransfer.h"
#include "language/Evaluator.h"
#include "language/FileTable.h"
#include "language/Parser.h"
#include "language/Program.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qnsim {

class Interpreter {
  public:
    enum class State {
        Idle,
        Running,
        NeedsLine, ///< INPUT waits for a line from the console
        NeedsData, ///< a load waits for its bytes
        Transfers, ///< a file transfer has the channel
    };

    /// How a run ended other than well.
    struct Report {
        Error error = Error::None; ///< None = stopped by a break
        int line = NoLine;
    };

    explicit Interpreter(Machine& machine);

    State Current() const { return mState; }

    /// Starts the statements of one typed line. An error means that nothing ran.
    Error Begin(std::string_view text);

    /// Stores, replaces or (empty text) deletes a program line. A line that does not read is kept
    /// and reported.
    Error StoreLine(int number, std::string_view text);
    int NextLineNumber() const { return mProgram.NextNumber(); }

    /// Runs up to so many statements, fewer when one of them was long (drawing is).
    void Run(int statements);

    /// What NeedsLine and NeedsData wait for. TakeData returns how many bytes it took.
    void GiveLine(const std::string& line);
    std::size_t TakeData(std::string_view bytes);
    /// How many bytes NeedsData waits for; 0 in every other state.
    std::size_t Missing() const { return mState == State::NeedsData ? mData.missing : 0; }
    /// The awaited bytes do not come: the load fails.
    void DataTimedOut();

    /// Goes on with the transfer that has the channel: what arrived, the time, what it says.
    /// Returns how many bytes it took.
    std::size_t WorkTransfer(std::string_view bytes);
    /// The transfer, or null when there is none.
    const FileTransfer* Transfer() const { return mTransfer.get(); }

    /// Stops the program. A transfer tells the other side.
    void Break();
    std::optional<Report> TakeReport();

    /// The statements, called through their table.
    void Assign(const Statement& statement);
    void If(const Statement& statement);
    void Jump(const Statement& statement);
    void Goto(const Statement& statement);
    void Gosub(const Statement& statement);
    void Return(const Statement& statement);
    void On(const Statement& statement);
    void For(const Statement& statement);
    void Next(const Statement& statement);
    void While(const Statement& statement);
    void Wend(const Statement& statement);
    void Dim(const Statement& statement);
    void End(const Statement& statement);
    void Nothing(const Statement& statement);
    void Resume(const Statement& statement);
    void Print(const Statement& statement);
    void Input(const Statement& statement);
    void Read(const Statement& statement);
    void Restore(const Statement& statement);
    void Open(const Statement& statement);
    void Close(const Statement& statement);
    void New(const Statement& statement);
    void List(const Statement& statement);
    void RunProgram(const Statement& statement);
    void Save(const Statement& statement);
    void Load(const Statement& statement);
    void Merge(const Statement& statement);
    void Immediate(const Statement& statement);
    void Reboot(const Statement& statement);
    void Kill(const Statement& statement);
    void Copy(const Statement& statement);
    void ChangeDirectory(const Statement& statement);
    void Format(const Statement& statement);
    void Files(const Statement& statement);
    void Setup(const Statement& statement);
    void SetupWrite(const Statement& statement);
    void Fonts(const Statement& statement);
    void RemoveFont(const Statement& statement);
    void Images(const Statement& statement);
    void RemoveImage(const Statement& statement);
    void ImageLoad(const Statement& statement);
    void FileLoad(const Statement& statement);
    void TransferKermit(const Statement& statement);
    void TransferZModem(const Statement& statement);
    void ClearLabel(const Statement& statement);
    void Position(const Statement& statement);
    void Anchor(const Statement& statement);
    void Direction(const Statement& statement);
    void NormalImage(const Statement& statement);
    void InverseImage(const Statement& statement);
    void Font(const Statement& statement);
    void LabelText(const Statement& statement);
    void LabelImage(const Statement& statement);
    void LabelLine(const Statement& statement);
    void LabelBox(const Statement& statement);
    void PrintFeed(const Statement& statement);

  private:
    struct ForFrame {
        int slot;
        double limit;
        double step;
        const Code* code;
        std::size_t body;
    };
    struct CallFrame {
        const Code* code;
        std::size_t at;
    };
    /// The item of DATA that READ takes next.
    struct DataPlace {
        std::size_t statement = 0;
        std::size_t item = 0;
    };
    struct DataWait {
        bool image = false; ///< IMAGE LOAD; else FILE& LOAD
        bool permanent = false;
        std::string name;
        std::size_t missing = 0;
        std::size_t room = 0; ///< bytes that are kept; more are counted and dropped
        bool tooLarge = false;
        std::string bytes;
    };
    struct Trap {
        int line = NoLine; ///< ON ERROR GOTO
        bool active = false;
        std::size_t failedAt = 0;
    };

    bool InProgram() const { return mCode == &mProgramCode; }
    void Fail(Error error) { mEvaluator.Fail(error); }
    void HandleFailure(const Statement& statement, std::size_t at);
    void Finish();
    /// Makes the program ready to run. False = it does not read: the run is over, the report says
    /// why.
    bool Link();
    std::optional<Report> LinkLines();
    bool ResolveTargets(Statement& statement);
    void JumpToLine(int line);
    void StartProgram(int line);
    void SkipLoop(std::string_view opening, std::string_view closing, Error missing);
    bool LoopGoesOn(const ForFrame& frame) const;
    /// The next item of DATA, to which the place of reading moves; null when none is left.
    const Expr* NextItem();
    std::string PrintedText(const Statement& statement);
    void AcceptInput(const std::string& line);
    void ReplaceProgram(const std::string& path, bool merge);
    void ListResources(std::string_view device, bool withSizes);
    void Listing(const Device& device, bool systemToo);
    void WriteBytesLine(const Device& device);
    void AwaitData(const Statement& statement, bool image);
    void StoreData();
    void BeginTransfer(const Statement& statement, FileTransfer::Protocol protocol);
    void EndTransfer();

    Machine& mMachine;
    Variables mVariables;
    Evaluator mEvaluator;
    FileTable mFiles;
    Program mProgram;

    Code mTypedCode;
    Code mProgramCode;
    std::map<int, std::size_t> mLineStarts;
    DataPlace mReading;
    bool mLinked = false;

    State mState = State::Idle;
    const Code* mCode = &mTypedCode;
    std::size_t mAt = 0;
    bool mSliceEnds = false; ///< a long statement was the last of its slice
    std::vector<ForFrame> mLoops;
    std::vector<CallFrame> mCalls;
    std::vector<CallFrame> mWhiles;
    Trap mTrap;
    DataWait mData;
    std::unique_ptr<FileTransfer> mTransfer;
    std::optional<Report> mReport;
};

} // namespace qnsim
