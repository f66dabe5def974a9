#include "KermitAttributes.h"
#include "KermitReceiverMachine.h"

#include <algorithm>
#include <utility>

namespace qncomm::transfer {

namespace {

// CR LF becomes LF; a CR at the end waits for what follows.
std::string ToLines(std::string_view bytes, bool& bPendingCr) {
    std::string out;
    for (const char c : bytes) {
        if (bPendingCr && c != '\n') out.push_back('\r');
        bPendingCr = c == '\r';
        if (!bPendingCr) out.push_back(c);
    }
    return out;
}

} // namespace

// The packet whose turn it is. Requests may stand afterwards; their answers go on from there.
void KermitReceiver::Process(Time now) {
    const bool inFile = m->state == State::File;
    switch (m->current.type) {
    case kermit::FilePacket:
        if (m->state == State::Ready || m->broken) ProcessHeader();
        break;
    case kermit::AttributesPacket:
        if (inFile) ProcessAttributes();
        break;
    case kermit::DataPacket:
        if (inFile) ProcessData();
        break;
    case kermit::EofPacket:
        if (inFile) ProcessEof();
        break;
    case kermit::BreakPacket:
        if (m->state != State::Ready) return;
        Acknowledge(m->current.sequence, {});
        End(Outcome::Success, "");
        return;
    default:
        Fail("the sender asks for something that a receiver does not do");
        return;
    }
    const bool passed = PendingRequest() == nullptr && Outcome() == Outcome::Running;
    if (passed && (inFile || m->state == State::File)) TakeNext(now);
}

void KermitReceiver::ProcessHeader() {
    FileInfo file;
    if (!m->coding.Decode(m->current.data, file.name)) {
        Fail("the sender's file name is not well formed");
        return;
    }
    mFile = file;
    m->state = State::File;
    m->skip = m->broken ? m->position : 0;
    if (!m->broken) m->discard = false;
    if (!mFileOpen) m->position = 0;
    m->broken = false;
    m->pendingCr = false;
    m->said.clear();
    m->saidAt = LastHeard();
    m->early.clear();
    m->seen = 0;
    Enter(Phase::Opening);
    Acknowledge(m->current.sequence, {});
}

void KermitReceiver::ProcessAttributes() {
    ReadKermitAttributes(m->current.data, mFile);
    if (mFile.resume && m->skip != 0) {
        m->skip = 0;
        Acknowledge(m->current.sequence, WriteKermitResume(m->position));
    } else if (mFile.resume && !mFileOpen && !m->discard) {
        AskOffer(); // the answer says where to go on
    } else {
        Acknowledge(m->current.sequence, "Y");
    }
}

void KermitReceiver::AskOffer() {
    Request request;
    request.kind = RequestKind::Offer;
    request.file = mFile;
    request.file.fromAnywhere = m->current.type == kermit::AttributesPacket;
    Ask(std::move(request));
}

void KermitReceiver::OnOffered(const transfer::Answer& answer, Time now) {
    const bool resumes = m->current.type == kermit::AttributesPacket;
    if (answer.kind == AnswerKind::Skip) {
        m->discard = true;
    } else {
        const std::uint64_t offset = resumes ? answer.offset : 0;
        if (answer.offset != offset) {
            Fail("the sender cannot go on in the middle of the file");
            return;
        }
        OpenFile(mFile, offset);
        m->position = offset;
        Enter(Phase::Moving);
    }
    if (!resumes) {
        Process(now);
        return;
    }
    Acknowledge(m->current.sequence, m->discard ? "N" : WriteKermitResume(m->position));
    TakeNext(now);
}

void KermitReceiver::ProcessData() {
    if (m->discard) {
        AcknowledgeData("X");
        return;
    }
    if (!mFileOpen) {
        AskOffer();
        return;
    }
    m->content.clear();
    if (!m->coding.Decode(m->current.data, m->content)) {
        Fail("the sender's data is not well formed");
        return;
    }
    if (mFile.text) m->content = ToLines(m->content, m->pendingCr);
    const std::size_t known =
        static_cast<std::size_t>(std::min<std::uint64_t>(m->skip, m->content.size()));
    m->skip -= known;
    m->content.erase(0, known);
    if (m->content.empty()) {
        AcknowledgeData({});
        return;
    }
    Request request;
    request.kind = RequestKind::Write;
    request.offset = m->position;
    request.data = m->content;
    m->position += m->content.size();
    Ask(std::move(request));
}

void KermitReceiver::ProcessEof() {
    const bool dropped = m->discard || m->current.data == "D";
    if (!dropped && !mFileOpen) {
        AskOffer(); // a file without content
        return;
    }
    if (!dropped && m->pendingCr) {
        m->pendingCr = false;
        m->content.assign(1, '\r');
        Request request;
        request.kind = RequestKind::Write;
        request.offset = m->position++;
        request.data = m->content;
        Ask(std::move(request));
        return;
    }
    m->whole = !dropped;
    Enter(Phase::Closing);
    if (mFileOpen) {
        AskClose(m->whole);
    } else {
        OnClosed(LastHeard());
    }
}

void KermitReceiver::OnClosed(Time now) {
    (m->whole ? mProgress.files : mProgress.skipped) += 1;
    m->state = State::Ready;
    // A sender that streams may have come to the end before it heard that the file is not wanted.
    Acknowledge(m->current.sequence, m->terms.streaming && m->discard ? "X" : "");
    ArmSilence(now);
}

void KermitReceiver::OnAnswer(RequestKind kind, const transfer::Answer& answer, Time now) {
    switch (kind) {
    case RequestKind::Offer:
        OnOffered(answer, now);
        break;
    case RequestKind::Write:
        mProgress.bytes = m->position;
        if (m->current.type == kermit::EofPacket) {
            Process(now);
            break;
        }
        AcknowledgeData({});
        TakeNext(now);
        break;
    case RequestKind::Close:
        if (answer.kind == AnswerKind::Failed) return Fail(answer.reason);
        OnClosed(now);
        TakeNext(now);
        break;
    default:
        break;
    }
}

} // namespace qncomm::transfer
