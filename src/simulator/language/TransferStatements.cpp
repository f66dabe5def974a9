// Files that travel by a protocol.
#include "Text.h"
#include "language/Interpreter.h"

namespace qnsim {
namespace {

constexpr int BitsOfAllBytes = 8;

} // namespace

void Interpreter::TransferKermit(const Statement& statement) {
    BeginTransfer(statement, FileTransfer::Protocol::Kermit);
}

void Interpreter::TransferZModem(const Statement& statement) {
    BeginTransfer(statement, FileTransfer::Protocol::ZModem);
}

void Interpreter::BeginTransfer(const Statement& statement, FileTransfer::Protocol protocol) {
    const std::string way = Upper(mEvaluator.Text(statement.args[0]));
    const bool named = statement.args[1].IsPresent();
    const std::string path = named ? mEvaluator.Text(statement.args[1]) : std::string();
    if (mEvaluator.Failure() != Error::None) return;
    if ((way != "R" && way != "S") || named != (way == "S")) return Fail(Error::IllegalArgument);
    const bool sevenBits = mMachine.setup.Channel(mMachine.wiredUart).dataBits != BitsOfAllBytes;
    if (sevenBits && protocol == FileTransfer::Protocol::ZModem)
        return Fail(Error::EightBitsNeeded);
    if (way == "R") {
        mTransfer =
            std::make_unique<FileTransfer>(protocol, sevenBits, mMachine.storage, mMachine.now);
    } else {
        const FilePlace place = mMachine.storage.Locate(path);
        if (place.error != Error::None) return Fail(place.error);
        const auto file = place.device->files.find(place.name);
        if (file == place.device->files.end()) return Fail(Error::FileNotFound);
        mTransfer = std::make_unique<FileTransfer>(protocol, sevenBits, place.name,
                                                   file->second.content, mMachine.now);
    }
    mState = State::Transfers;
}

std::size_t Interpreter::WorkTransfer(std::string_view bytes) {
    if (mState != State::Transfers) return 0;
    const std::size_t taken = mTransfer->Receive(bytes, mMachine.now);
    mTransfer->Work(mMachine.now, mMachine.lineRoom, mMachine.out);
    if (mTransfer->IsOver()) EndTransfer();
    return taken;
}

void Interpreter::EndTransfer() {
    const std::size_t at = mAt - 1;
    const Error error = mTransfer->Result();
    mTransfer.reset();
    mState = State::Running;
    Fail(error);
    if (mEvaluator.Failure() != Error::None) HandleFailure((*mCode)[at], at);
}

} // namespace qnsim
