#include "ZModemFileInfo.h"
#include "ZModemReceiverMachine.h"

#include <algorithm>

namespace qncomm::transfer {

namespace {

constexpr Time DataSilence = std::chrono::seconds(1);
// A frame that starts this far behind is taken and what is already here passed over; farther back
// it is refused.
constexpr std::uint64_t Overlap = 65536;
constexpr std::uint32_t CommandRefused = 127;
// In an attention sequence these two stand for a break signal and a pause; bytes alone can be sent
// here.
constexpr std::string_view AttentionMarks = "\xDD\xDE";
constexpr std::size_t LongestAttention = 31;
// The sender reads all that is here before it answers.
constexpr Time SumPatience = std::chrono::seconds(10);

} // namespace

void ZModemReceiver::ArmData(Time now) {
    Arm(std::max(DataSilence, m->roundTrip.RetryAfter() * 2), now);
}

void ZModemReceiver::SendReposition(Time now) {
    m->askedAt = m->state == State::Reposition ? Time{-1} : now;
    m->state = State::Reposition;
    m->reader.ExpectHeader();
    Put(m->attention);
    m->writer.Hex(OutputBuffer(),
                  ZModemHeader::At(zm::RPos, static_cast<std::uint32_t>(m->filePosition)));
    Arm(m->roundTrip.RetryAfter(), now);
}

void ZModemReceiver::OnContent(Time now) {
    const std::string_view content = m->reader.Content();
    switch (m->contentOf) {
    case zm::File:
        OnFileContent(now);
        break;
    case zm::Data:
        if (m->state == State::Data) OnDataContent(now);
        break;
    case zm::SInit:
        m->attention = content.substr(0, std::min(content.find('\0'), LongestAttention));
        std::erase_if(m->attention,
                      [](char c) { return AttentionMarks.find(c) != std::string_view::npos; });
        m->reader.IgnoreControls((m->reader.Header().Flags() & zm::EscapeControlsFlag) != 0);
        m->writer.Hex(OutputBuffer(), ZModemHeader::At(zm::Ack, 1));
        break;
    case zm::Command:
        m->writer.Hex(OutputBuffer(), ZModemHeader::At(zm::Compl, CommandRefused));
        break;
    default:
        break;
    }
}

void ZModemReceiver::OnFileContent(Time now) {
    if (m->state == State::Reposition || m->state == State::Data) {
        SendReposition(now); // the sender did not hear where to start
        return;
    }
    if (m->state == State::Compare) {
        SendSumRequest(now);
        return;
    }
    if (m->state != State::Ready) return;
    Disarm();
    Request request;
    request.kind = RequestKind::Offer;
    request.file = ReadZModemFileInfo(m->reader.Content());
    request.file.text = m->reader.Header().Flags() == zm::ConvertText;
    request.file.resume = m->reader.Header().Flags() == zm::ConvertResume;
    request.file.fromAnywhere = true;
    request.file.compared = true;
    mFile = request.file;
    m->state = State::Offered;
    Enter(Phase::Opening);
    Ask(std::move(request));
}

void ZModemReceiver::OnAnswer(RequestKind kind, const transfer::Answer& answer, Time now) {
    switch (kind) {
    case RequestKind::Offer:
        OnOffered(answer, now);
        break;
    case RequestKind::Write:
        SubpacketTaken(now);
        break;
    case RequestKind::Close:
        if (answer.kind == AnswerKind::Failed) return Fail(answer.reason);
        (m->closesWhole ? mProgress.files : mProgress.skipped) += 1;
        m->closesWhole = false;
        m->tries = 0;
        SendReady(now);
        break;
    default:
        break;
    }
}

void ZModemReceiver::OnOffered(const transfer::Answer& answer, Time now) {
    m->tries = 0;
    if (answer.kind == AnswerKind::Skip) {
        ++mProgress.skipped;
        m->state = State::Ready;
        m->writer.Hex(OutputBuffer(), ZModemHeader::At(zm::Skip, 0));
        Arm(m->roundTrip.RetryAfter(), now);
        return;
    }
    if (answer.offset >= zm::MostPositions) {
        Fail("the file is too long for ZModem");
        return;
    }
    OpenFile(mFile, answer.offset);
    m->filePosition = answer.offset;
    m->sum = answer.sum;
    if (answer.offset > 0)
        SendSumRequest(now);
    else
        SendReposition(now);
}

void ZModemReceiver::SendSumRequest(Time now) {
    m->state = State::Compare;
    const auto length = static_cast<std::uint32_t>(m->filePosition);
    m->writer.Hex(OutputBuffer(), ZModemHeader::At(zm::Crc, length));
    ArmFixed(SumPatience, now);
}

void ZModemReceiver::OnSum(std::uint32_t sum, Time now) {
    if (m->state != State::Compare) return;
    m->tries = 0;
    if (sum == m->sum)
        SendReposition(now);
    else
        OfferAnew();
}

// What is here is the beginning of another file, or nobody can tell.
void ZModemReceiver::OfferAnew() {
    Disarm();
    Request request;
    request.kind = RequestKind::Offer;
    request.file = mFile;
    request.file.fromAnywhere = false;
    m->state = State::Offered;
    Ask(std::move(request));
}

void ZModemReceiver::OnDataHeader(std::uint64_t position, Time now) {
    if (m->state == State::Ready && mProgress.files != 0) {
        SendReady(now); // the sender did not hear that its file is whole
        return;
    }
    if (m->state != State::Reposition && m->state != State::Data) return;
    if (position > m->filePosition || position + Overlap < m->filePosition) {
        SendReposition(now);
        return;
    }
    if (m->state == State::Reposition && m->askedAt > Time{0}) m->roundTrip.Saw(now - m->askedAt);
    m->state = State::Data;
    Enter(Phase::Moving);
    m->tries = 0;
    m->contentOf = zm::Data;
    m->framePosition = position;
    m->reader.ExpectData();
    ArmData(now);
}

void ZModemReceiver::OnDataContent(Time now) {
    const std::string_view content = m->reader.Content();
    m->subpacketEnd = m->reader.End();
    const std::uint64_t end = m->framePosition + content.size();
    const std::uint64_t known = m->filePosition - m->framePosition;
    m->framePosition = end;
    if (end <= m->filePosition) {
        SubpacketTaken(now);
        return;
    }
    if (end >= zm::MostPositions) {
        Fail("the file is too long for ZModem");
        return;
    }
    Request request;
    request.kind = RequestKind::Write;
    request.offset = m->filePosition;
    request.data = content.substr(static_cast<std::size_t>(known));
    m->filePosition = end;
    Ask(std::move(request));
}

void ZModemReceiver::SubpacketTaken(Time now) {
    mProgress.bytes = m->filePosition;
    if (m->subpacketEnd == zm::EndQuery || m->subpacketEnd == zm::EndWait) {
        const auto position = static_cast<std::uint32_t>(m->framePosition);
        m->writer.Hex(OutputBuffer(), ZModemHeader::At(zm::Ack, position));
    }
    ArmData(now);
}

void ZModemReceiver::OnEof(std::uint64_t position, Time now) {
    if (m->state == State::Ready && mProgress.files != 0) {
        SendReady(now); // the sender did not hear that its file is whole
    } else if (m->state == State::Reposition || m->state == State::Data) {
        if (position == m->filePosition) {
            m->closesWhole = true;
            m->state = State::Closing;
            Enter(Phase::Closing);
            Disarm();
            AskClose(true);
        } else if (m->state == State::Data && position > m->filePosition) {
            ++mProgress.repairs;
            SendReposition(now);
        }
    }
}

} // namespace qncomm::transfer
