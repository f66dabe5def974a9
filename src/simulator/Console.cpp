#include "Console.h"

#include "Text.h"

namespace qnsim {
namespace {

constexpr char BreakCharacter = '\x03';
constexpr char Backspace = '\b';
constexpr char Rubout = '\x7F';
constexpr std::string_view NewLine = "\r\n";
constexpr std::size_t InputKept = 64UL * 1024;

bool IsControl(char c) {
    return static_cast<unsigned char>(c) < ' ' && c != '\t';
}

} // namespace

Console::Console(Machine& machine, const Faults& faults, ConsoleMoods& moods)
    : mMachine(machine),
      mMoods(moods),
      mInterpreter(machine),
      mEchoes(!faults.noEcho),
      mErrorOnCommand(faults.errorOnCommand) {}

bool Console::Busy() const {
    using State = Interpreter::State;
    // Input that came behind a transfer's bytes is handled when the transfer has ended.
    if (mInterpreter.Current() == State::Transfers || mPutOff) return false;
    return mInterpreter.Current() == State::Running || Waiting() != 0;
}

std::optional<Micros> Console::NextDue() const {
    if (!mPutOff) return mNoiseDue;
    return mPutOff->due;
}

void Console::Overrun(std::size_t most) {
    if (Waiting() > most) mInput.resize(mRead + most);
}

void Console::Say(std::string_view text) {
    (mPutOff ? mPutOff->words : mMachine.out) += text;
}

bool Console::IsPutOff() {
    if (!mPutOff) return false;
    if (mMachine.now < mPutOff->due) return true;
    EndPutOff();
    return false;
}

void Console::EndPutOff() {
    const PutOff due = std::move(*mPutOff);
    mPutOff.reset();
    mMachine.out += due.words;
    if (!due.command.empty()) CarryOut(due.command);
}

void Console::MakeNoise() {
    mNoiseDue.reset();
    mMachine.out += mMoods.Noise();
}

void Console::Work(int statements) {
    using State = Interpreter::State;
    if (mNoiseDue && mMachine.now >= *mNoiseDue) MakeNoise();
    int slices = statements;
    while (slices-- > 0 && !IsPutOff() && !mMachine.powerLost) {
        switch (mInterpreter.Current()) {
        case State::Running:
            mInterpreter.Run(statements);
            Settle();
            if (mInterpreter.Current() != State::Running) break;
            LookForBreak();
            return;
        case State::NeedsData:
            if (Waiting() == 0) return;
            mRead += mInterpreter.TakeData(std::string_view(mInput).substr(mRead));
            MakeRoom();
            Settle();
            break;
        case State::Transfers:
            mRead += mInterpreter.WorkTransfer(std::string_view(mInput).substr(mRead));
            MakeRoom();
            if (mInterpreter.Current() == State::Transfers) return;
            Settle();
            break;
        default:
            if (!ReadLine()) return;
            Execute();
        }
    }
}

void Console::LookForBreak() {
    const auto at = mInput.find(BreakCharacter, mRead);
    if (at == std::string::npos) return;
    mRead = at + 1;
    mInterpreter.Break();
    Settle();
}

void Console::Break() {
    mInput.clear();
    mRead = 0;
    mLine.clear();
    mLineTooLong = false;
    if (mPutOff) return BreakPutOff();
    if (mInterpreter.Current() == Interpreter::State::Idle) return;
    mInterpreter.Break();
    Settle();
}

void Console::BreakPutOff() {
    // An error that is due is said at once; a command that was not begun ends as a running one.
    const bool begun = mPutOff->command.empty();
    mPutOff->command.clear();
    EndPutOff();
    if (begun) return;
    mMachine.out += "Break" + std::string(NewLine);
    Prompt();
}

void Console::DataTimedOut() {
    mInterpreter.DataTimedOut();
    Settle();
}

bool Console::ReadLine() {
    while (mRead < mInput.size()) {
        const char c = mInput[mRead++];
        const bool ends = c == '\r' || (c == '\n' && !mAfterReturn);
        mAfterReturn = c == '\r';
        if (mNoiseDue && c != '\n') MakeNoise();
        if (ends) {
            Echo(NewLine);
            return true;
        }
        if (c == BreakCharacter && mInterpreter.Current() == Interpreter::State::NeedsLine) {
            mInterpreter.Break();
            Settle();
        } else if (c != '\n') {
            ReadCharacter(c);
        }
    }
    mInput.clear();
    mRead = 0;
    return false;
}

void Console::ReadCharacter(char c) {
    if (c == Backspace || c == Rubout) return Erase();
    if (c == BreakCharacter) mLine.clear();
    if (IsControl(c)) return;
    if (mLine.size() >= LongestLine) {
        mLineTooLong = true;
        return;
    }
    mLine += c;
    Echo(std::string_view(&c, 1));
}

void Console::Erase() {
    if (mLine.empty()) return;
    mLine.pop_back();
    Echo("\b \b");
}

void Console::Echo(std::string_view bytes) {
    if (mEchoes && mMachine.system.Echoes()) mMachine.out += bytes;
}

void Console::MakeRoom() {
    // Handled lines are erased now and then, not one by one, so that a long queue takes linear
    // time.
    if (mRead < mInput.size() && mRead < InputKept) return;
    mInput.erase(0, mRead);
    mRead = 0;
}

void Console::Execute() {
    MakeRoom();
    std::string line;
    line.swap(mLine);
    const bool tooLong = mLineTooLong;
    mLineTooLong = false;
    if (mInterpreter.Current() == Interpreter::State::NeedsLine) {
        mInterpreter.GiveLine(line);
        Settle();
        return;
    }
    if (!mMachine.immediate) ++mModuleLine;
    const std::string_view text = Trim(line);
    if (text.empty()) return;
    if (++mCommands == mErrorOnCommand) {
        ErrorLine(Error::PrintHead, NoLine);
        Prompt();
    } else if (tooLong) {
        ErrorLine(Error::LineTooLong, mMachine.immediate ? NoLine : mModuleLine);
        if (mMachine.immediate) Prompt();
    } else {
        Type(text);
    }
}

bool Console::BeginsWithImmediate(std::string_view text) const {
    constexpr std::string_view word = "IMMEDIATE";
    return Upper(text.substr(0, word.size())) == word;
}

void Console::Type(std::string_view text) {
    const bool numbered = text.front() >= '0' && text.front() <= '9';
    if (numbered || (!mMachine.immediate && !BeginsWithImmediate(text))) return StoreLine(text);
    if (const Micros time = mMoods.TimeFor(text); time > 0) {
        mPutOff = {mMachine.now + time, {}, std::string(text)};
    } else {
        CarryOut(text);
    }
}

void Console::CarryOut(std::string_view text) {
    const Error error = mInterpreter.Begin(text);
    if (error == Error::None) return;
    ErrorLine(error, NoLine);
    Prompt();
}

void Console::StoreLine(std::string_view text) {
    int number = TakeLineNumber(text);
    if (number < 0) number = mInterpreter.NextLineNumber();
    const Error error = mInterpreter.StoreLine(number, text);
    if (error == Error::None) return;
    ErrorLine(error, mMachine.immediate ? number : mModuleLine);
    if (mMachine.immediate) Prompt();
}

void Console::ErrorLine(Error error, int line) {
    if (!mMachine.system.ShowsErrors()) return;
    std::string words = "Error " + std::to_string(static_cast<int>(error));
    if (line != NoLine && mMachine.system.NamesLines()) words += " in line " + std::to_string(line);
    Say(words + ": " + std::string(ErrorText(error)) + std::string(NewLine));
}

void Console::Settle() {
    // A command has ended when nothing runs and nothing is awaited.
    if (const auto report = mInterpreter.TakeReport()) {
        if (report->error != Error::None) {
            if (const Micros late = mMoods.LateErrors(); late > 0)
                mPutOff = {mMachine.now + late, {}, {}};
            ErrorLine(report->error, report->line);
        } else {
            mMachine.out += "Break";
            if (report->line != NoLine) mMachine.out += " in line " + std::to_string(report->line);
            mMachine.out += NewLine;
        }
    }
    if (mInterpreter.Current() != Interpreter::State::Idle || mMachine.restartWanted) return;
    if (mMachine.immediate) mModuleLine = 0;
    Prompt();
}

void Console::Prompt() {
    if (!mMachine.system.Prompts()) return;
    Say("Ok\r\n");
    mNoiseDue = mMoods.NoiseAfter(mPutOff ? mPutOff->due : mMachine.now);
}

} // namespace qnsim
