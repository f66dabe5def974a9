// The program as a whole: clearing, listing, running, saving, loading and merging.
#include "language/Interpreter.h"

namespace qnsim {

void Interpreter::New(const Statement& /*statement*/) {
    if (InProgram()) return Fail(Error::ImmediateOnly);
    mFiles.CloseAll();
    mProgram.Clear();
    mVariables.Clear();
    mProgramCode.clear();
    mLineStarts.clear();
    mReading = {};
    mLinked = false;
    mLoops.clear();
    mCalls.clear();
    mWhiles.clear();
    mEvaluator.SetProgramBytes(0);
}

void Interpreter::List(const Statement& statement) {
    mMachine.out += mProgram.Listing(statement.number, statement.number2);
}

void Interpreter::RunProgram(const Statement& statement) {
    const int line =
        statement.args.empty() ? NoLine : mEvaluator.Whole(statement.args[0], 0, LargestLineNumber);
    if (mEvaluator.Failure() == Error::None) StartProgram(line);
}

void Interpreter::Save(const Statement& statement) {
    const std::string path = mEvaluator.Text(statement.args[0]);
    if (mEvaluator.Failure() != Error::None) return;
    if (!mMachine.model.programmable) return Fail(Error::NotProgrammable);
    Fail(mMachine.storage.Write(path, mProgram.Listing(0, LargestLineNumber)));
}

void Interpreter::Load(const Statement& statement) {
    ReplaceProgram(mEvaluator.Text(statement.args[0]), false);
}

void Interpreter::Merge(const Statement& statement) {
    ReplaceProgram(mEvaluator.Text(statement.args[0]), true);
}

void Interpreter::ReplaceProgram(const std::string& path, bool merge) {
    if (mEvaluator.Failure() != Error::None) return;
    if (InProgram()) return Fail(Error::ImmediateOnly);
    if (!mMachine.model.programmable) return Fail(Error::NotProgrammable);
    const FilePlace place = mMachine.storage.Locate(path);
    if (place.error != Error::None) return Fail(place.error);
    const StoredFile* file = mMachine.storage.Find(path);
    if (file == nullptr) return Fail(Error::FileNotFound);
    const Program::Reading reading = Program::ReadListing(file->content);
    if (reading.error != Error::None) return Fail(reading.error);
    const std::uint64_t kept = merge ? mProgram.Bytes() : 0;
    if (kept + file->content.size() >= mMachine.model.memory) return Fail(Error::OutOfMemory);
    if (!merge) mProgram.Clear();
    for (const auto& [number, text] : reading.lines)
        mProgram.Store(number, text);
    mEvaluator.SetProgramBytes(mProgram.Bytes());
    mLinked = false;
}

} // namespace qnsim
