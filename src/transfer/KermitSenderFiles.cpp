#include "KermitAttributes.h"
#include "KermitCheck.h"
#include "KermitSenderMachine.h"

#include <algorithm>
#include <utility>

namespace qncomm::transfer {

// The answer to a packet that has left the window.
void KermitSender::OnReply(char type, const std::string& data, Time now) {
    switch (type) {
    case kermit::SendInit:
        OnTermsAgreed(data, now);
        break;
    case kermit::FilePacket:
        if (m->terms.attributes) {
            m->state = State::Attributes;
            SendPacket(kermit::AttributesPacket, WriteKermitAttributes(mFile, m->terms.DataRoom()),
                       0, now);
        } else {
            m->state = State::Data;
            Enter(Phase::Moving);
        }
        break;
    case kermit::AttributesPacket:
        OnAttributesReply(data);
        break;
    case kermit::DataPacket:
        if (data == "X" || data == "Z") m->discard = true;
        if (data == "Z") m->discardAll = true;
        break;
    case kermit::EofPacket:
        if (data == "X") m->discard = true;
        (m->discard ? mProgress.skipped : mProgress.files) += 1;
        if (!m->discard && mProgress.size) mProgress.bytes = *mProgress.size;
        Disarm();
        AskClose(!m->discard);
        break;
    case kermit::BreakPacket:
        End(Outcome::Success, "");
        break;
    default:
        break;
    }
}

void KermitSender::OnTermsAgreed(const std::string& data, Time now) {
    m->terms = ConcludeKermitTerms(m->options, data);
    m->coding = KermitCoding(m->terms, m->options.prefixing);
    m->reader.SetCheck(m->terms.check);
    const std::size_t longest = m->terms.DataRoom();
    const std::size_t first = std::min<std::size_t>(longest, 250);
    m->piece = PieceLength({first, std::min<std::size_t>(longest, 40), longest, 10, 8, 1.2});
    if (mFileOpen) {
        AnnounceFile(now); // the same once more
    } else {
        AskNextFile();
    }
}

void KermitSender::OnAttributesReply(const std::string& data) {
    if (!data.empty() && data[0] == 'N') m->discard = true;
    if (const auto offset = ReadKermitResume(data); offset && mFile.resume) {
        m->readAt = *offset;
        mProgress.bytes = *offset;
    }
    m->state = State::Data;
    Enter(Phase::Moving);
}

void KermitSender::AskNextFile() {
    Disarm();
    m->state = State::NextFile;
    Request request;
    request.kind = RequestKind::NextFile;
    Ask(std::move(request));
}

void KermitSender::OnAnswer(RequestKind kind, const transfer::Answer& answer, Time now) {
    switch (kind) {
    case RequestKind::NextFile:
        OnNextFile(answer, now);
        break;
    case RequestKind::Read:
        OnRead(answer.data);
        break;
    default:
        if (!m->discardAll) {
            AskNextFile();
        } else {
            OnNextFile({AnswerKind::Skip, {}, 0, 0, {}, {}}, now);
        }
        break;
    }
}

void KermitSender::OnNextFile(const transfer::Answer& answer, Time now) {
    m->timeouts = 0;
    if (answer.kind == AnswerKind::Skip) {
        m->state = State::Break;
        Enter(Phase::Closing);
        SendPacket(kermit::BreakPacket, {}, 0, now);
        return;
    }
    mFile = answer.file;
    AnnounceFile(now);
}

void KermitSender::AnnounceFile(Time now) {
    OpenFile(mFile, 0);
    Enter(Phase::Opening);
    m->ahead.clear();
    m->aheadUsed = 0;
    m->readAt = 0;
    m->lastRead = 0;
    m->atEnd = false;
    m->discard = false;
    m->state = State::Header;
    SendPacket(kermit::FilePacket, m->coding.EncodeText(mFile.name, m->terms.DataRoom()), 0, now);
}

void KermitSender::OnRead(std::string_view data) {
    m->readAt += data.size();
    m->atEnd = data.empty();
    m->aheadUsed = 0;
    if (!mFile.text) {
        m->ahead.assign(data);
        return;
    }
    m->ahead.clear();
    for (const char c : data) {
        if (c == '\n' && m->lastRead != '\r') m->ahead.push_back('\r');
        m->ahead.push_back(c);
        m->lastRead = c;
    }
}

void KermitSender::OnProduce(Time now) {
    if (m->state != State::Data) return;
    const bool used = m->aheadUsed >= m->ahead.size();
    if (m->discard || (used && m->atEnd)) {
        if (!m->slots.empty()) return;
        m->state = State::Eof;
        Enter(Phase::Closing);
        SendPacket(kermit::EofPacket, m->discard ? "D" : "", 0, now);
    } else if (used) {
        Request request;
        request.kind = RequestKind::Read;
        request.offset = m->readAt;
        request.length = Machine::ReadAhead;
        Ask(std::move(request));
    } else if (m->terms.streaming) {
        Heard(now); // a line that takes bytes is alive, and nothing else is said to be
        SendData(now);
    } else if (m->slots.size() < m->terms.window) {
        const std::uint64_t underWay = m->sentBytes - m->flow.AcknowledgedTo();
        if (m->slots.empty() || underWay < m->flow.Size(m->piece.Current())) SendData(now);
    }
}

void KermitSender::SendData(Time now) {
    std::string_view rest = std::string_view(m->ahead).substr(m->aheadUsed);
    const std::size_t before = rest.size();
    std::string data;
    m->coding.Encode(rest, m->terms.streaming ? m->terms.DataRoom() : m->piece.Current(), data);
    const std::size_t content = before - rest.size();
    m->aheadUsed += content;
    if (m->terms.streaming) {
        Stream(data, content);
        return;
    }
    SendPacket(kermit::DataPacket, data, content, now);
}

// A data packet that nobody acknowledges and that is not kept.
void KermitSender::Stream(const std::string& data, std::size_t content) {
    const std::string packet =
        WriteKermitPacket(kermit::DataPacket, m->sequence, data, m->terms.check);
    Put(packet);
    m->sentBytes += packet.size();
    m->sequence = kermit::Next(m->sequence);
    mProgress.bytes += content;
    if (mProgress.size) mProgress.bytes = std::min(mProgress.bytes, *mProgress.size);
}

} // namespace qncomm::transfer
