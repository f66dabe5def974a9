#include "ReceivedFile.h"

#include "transfer/Crc32Sum.h"

#include <utility>

namespace qncomm {

ReceivedFile::ReceivedFile(std::string path, TransferPreferences preferences,
                           std::function<void(const transfer::FileInfo&)> announced)
    : mTarget(std::move(path)), mPreferences(preferences), mAnnounced(std::move(announced)) {}

ReceivedFile::~ReceivedFile() {
    Abandon();
}

IoResult ReceivedFile::Open() {
    return mPreferences.resume ? mFile.Open(mTarget, ".part") : mFile.Create(mTarget);
}

transfer::OfferDecision ReceivedFile::Offer(const transfer::FileInfo& file) {
    if (!mFile) {
        if (std::exchange(mOffered, true))
            return {transfer::AnswerKind::Skip, 0, 0, "one file was asked for"};
        mInfo = file;
        mAnnounced(file);
        if (const IoResult opened = Open(); !opened.Ok())
            return {transfer::AnswerKind::Failed, 0, 0, opened.text};
    }
    transfer::OfferDecision decision;
    IoResult ready;
    if (mFile.Length() > 0) ready = MayGoOn(file) ? Sum(decision.sum) : mFile.Clear();
    if (!ready.Ok()) return {transfer::AnswerKind::Failed, 0, 0, ready.text};
    decision.offset = mFile.Length();
    return decision;
}

/// Where the protocol compares no sums, the file's date has to do: what was kept has that of the
/// file that it is the beginning of.
bool ReceivedFile::MayGoOn(const transfer::FileInfo& file) const {
    if (!file.fromAnywhere || (file.size && mFile.Length() > *file.size)) return false;
    return file.compared || (file.modified && *file.modified == mFile.Modified());
}

IoResult ReceivedFile::Sum(std::uint32_t& lSum) const {
    constexpr std::size_t piece = 65536;
    transfer::Crc32Sum sum;
    std::string bytes;
    for (std::uint64_t at = 0; at < mFile.Length(); at += bytes.size()) {
        if (IoResult read = mFile.ReadAt(at, piece, bytes); !read.Ok()) return read;
        if (bytes.empty()) break; // somebody has cut it meanwhile: the sum will not fit
        sum.Add(bytes);
    }
    lSum = sum.Value();
    return {};
}

bool ReceivedFile::Write(std::uint64_t offset, std::string_view data, std::string& sReason) {
    const IoResult written = mFile.WriteAt(offset, data);
    if (!written.Ok()) sReason = written.text;
    return written.Ok();
}

bool ReceivedFile::Close(bool bWhole, std::string& sReason) {
    if (!mFile) return !bWhole;
    if (!bWhole) {
        Abandon();
        return true;
    }
    const IoResult placed = PutInPlace();
    if (placed.Ok()) return true;
    sReason = placed.text;
    Abandon();
    return false;
}

IoResult ReceivedFile::PutInPlace() {
    if (mPreferences.preserve && mInfo.modified)
        if (IoResult failed = mFile.SetModified(*mInfo.modified); !failed.Ok()) return failed;
    if (mPreferences.preserve && mInfo.mode) return mFile.Commit(*mInfo.mode);
    return mFile.Commit(FileMode::Replaced);
}

void ReceivedFile::Abandon() {
    if (!mPreferences.resume) {
        mFile.Discard();
        return;
    }
    // By its date it is known again; without one it is a new beginning.
    if (mFile) static_cast<void>(mFile.SetModified(mInfo.modified.value_or(0)));
    mFile.Keep();
}

} // namespace qncomm
