#include "ReceivedFile.h"

#include <utility>

namespace qncomm {

ReceivedFile::ReceivedFile(std::string path, TransferPreferences preferences,
                           std::function<void(const transfer::FileInfo&)> announced)
    : mTarget(std::move(path)), mPreferences(preferences), mAnnounced(std::move(announced)) {}

ReceivedFile::~ReceivedFile() {
    Abandon();
}

IoResult ReceivedFile::Open() {
    return mPreferences.resume ? mFile.Open(mTarget, mTarget + ".part") : mFile.Create(mTarget);
}

transfer::OfferDecision ReceivedFile::Offer(const transfer::FileInfo& file) {
    if (std::exchange(mOffered, true))
        return {transfer::AnswerKind::Skip, 0, "one file was asked for"};
    mInfo = file;
    mAnnounced(file);
    IoResult opened = Open();
    const bool ofAnother = file.size && mFile.Length() > *file.size;
    if (opened.Ok() && mFile.Length() > 0 && (ofAnother || !file.fromAnywhere))
        opened = mFile.Clear();
    if (!opened.Ok()) return {transfer::AnswerKind::Failed, 0, opened.text};
    return {transfer::AnswerKind::Ok, mFile.Length(), {}};
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
    return mFile.Commit(FileMode::Usual);
}

void ReceivedFile::Abandon() {
    if (mPreferences.resume)
        mFile.Keep();
    else
        mFile.Discard();
}

} // namespace qncomm
