#include "transfer/ZModemSender.h"

#include "ZModemFileInfo.h"
#include "ZModemSenderMachine.h"

#include <algorithm>
#include <utility>

namespace qncomm::transfer {

namespace {

using Millis = std::chrono::milliseconds;

constexpr Time HelloEvery = Millis(3000);
constexpr Time FinishEvery = Millis(330); // three of these are the second that a farewell may take
constexpr int FinishTries = 3;
// A request of a few bytes has a whole file read; who compares a file asks once, and again when the
// answer was lost.
constexpr int MostSums = 16;

} // namespace

ZModemSender::ZModemSender(ZModemSenderOptions options)
    : m(std::make_unique<Machine>(std::move(options))) {
    m->writer.EscapeControls(m->options.escapeControls);
    SetPatience(m->options.patience);
}

ZModemSender::~ZModemSender() = default;

void ZModemSender::OnStart(Time now) {
    Put(m->options.sGreeting);
    Repeat(now);
}

void ZModemSender::OnGiveUp(const std::string& /*sReason*/) {
    Put(zm::CancelText);
}

void ZModemSender::OnSilence(Time) {
    Fail(m->state == State::Hello ? "no ZModem receiver answered" : "the receiver fell silent");
}

bool ZModemSender::OnInput(Time now) {
    switch (m->reader.Next(Input())) {
    case ZModemReader::Item::None:
        return false;
    case ZModemReader::Item::Header:
        Heard(now);
        OnHeader(now);
        break;
    case ZModemReader::Item::Cancel:
        End(Outcome::CancelledThere, "cancelled by the receiver");
        break;
    default:
        break; // damage on the way back: the timer repeats what was not answered
    }
    return true;
}

void ZModemSender::OnHeader(Time now) {
    const ZModemHeader& header = m->reader.Header();
    switch (header.type) {
    case zm::RInit:
        OnReceiverReady(now);
        break;
    case zm::RPos:
        OnReposition(header.Position(), now);
        break;
    case zm::Ack:
        OnAcknowledge(header.Position(), now);
        break;
    case zm::Challenge:
        m->writer.Hex(OutputBuffer(), ZModemHeader::At(zm::Ack, header.Position()));
        break;
    default:
        OnOther(header.type, now);
        break;
    }
}

void ZModemSender::OnOther(std::uint8_t type, Time now) {
    switch (type) {
    case zm::Skip:
        if (mFileOpen && m->state != State::NextFile) {
            DropOutput();
            FileDone(false);
        }
        break;
    case zm::Nak:
        if (m->state != State::Data) Repeat(now);
        break;
    case zm::Crc:
        if (m->state == State::FileSent) {
            if (++m->sums > MostSums) {
                Fail("the receiver asks for one sum after the other");
                break;
            }
            const std::uint64_t limit = m->reader.Header().Position();
            m->checksumEnd = limit == 0 ? zm::MostPositions - 1 : limit;
            m->checksumAt = 0;
            m->checksum = Crc32Start;
            m->state = State::Checksum;
            AskRead(0);
        }
        break;
    case zm::Fin:
        if (m->state == State::Finish) {
            Put("OO");
            End(Outcome::Success, "");
        } else {
            Fail("the receiver ended the session");
        }
        break;
    case zm::Abort:
    case zm::Can:
        End(Outcome::CancelledThere, "cancelled by the receiver");
        break;
    case zm::FErr:
        Fail("the receiver could not write the file");
        break;
    default:
        break;
    }
}

void ZModemSender::OnReceiverReady(Time now) {
    const ZModemHeader& header = m->reader.Header();
    // Also when a late request has made it start again behind the end that the receiver has taken.
    if (m->state == State::Eof || (m->state == State::Data && m->endSaid)) {
        mProgress.bytes = m->furthest;
        FileDone(true);
        return;
    }
    if (m->state != State::Hello) return;
    m->writer.UseCrc32(m->options.crc32 && (header.Flags() & zm::CanCrc32) != 0);
    const bool escape = m->options.escapeControls || (header.Flags() & zm::EscapeControlsFlag) != 0;
    m->writer.EscapeControls(escape);
    m->segment =
        static_cast<std::size_t>(header.bytes[0]) | static_cast<std::size_t>(header.bytes[1]) << 8U;
    const std::uint8_t streams = zm::CanFullDuplex | zm::CanOverlapIo;
    if (m->segment == 0 && (header.Flags() & streams) != streams) m->segment = m->options.subpacket;
    DropOutput();
    if (m->options.escapeControls || !m->options.sAttention.empty()) {
        SendAttention(now);
    } else {
        AskNextFile();
    }
}

void ZModemSender::SendAttention(Time now) {
    m->state = State::Attention;
    const std::uint8_t flags = m->options.escapeControls ? zm::EscapeControlsFlag : 0;
    ZModemWriter writer = m->writer;
    writer.UseCrc32(false); // what follows a hex header has the sum of one
    writer.Hex(OutputBuffer(), ZModemHeader::WithFlags(zm::SInit, flags));
    writer.Subpacket(OutputBuffer(), m->options.sAttention.substr(0, 31) + '\0', zm::EndWait);
    Arm(HelloEvery, now);
}

void ZModemSender::AskNextFile() {
    Disarm();
    m->state = State::NextFile;
    Request request;
    request.kind = RequestKind::NextFile;
    Ask(std::move(request));
}

void ZModemSender::AskRead(std::uint64_t offset) {
    Request request;
    request.kind = RequestKind::Read;
    request.offset = offset;
    request.length = Machine::ReadAhead;
    Ask(std::move(request));
}

void ZModemSender::OnAnswer(RequestKind kind, const transfer::Answer& answer, Time now) {
    switch (kind) {
    case RequestKind::NextFile:
        OnNextFile(answer, now);
        break;
    case RequestKind::Read:
        OnRead(answer, now);
        break;
    default:
        AskNextFile();
        break;
    }
}

void ZModemSender::OnNextFile(const transfer::Answer& answer, Time now) {
    if (answer.kind == AnswerKind::Skip) {
        m->finishTries = 0;
        SendFinish(now);
        return;
    }
    OpenFile(answer.file, 0);
    Enter(Phase::Opening);
    SendFile(now);
}

void ZModemSender::SendFile(Time now) {
    m->state = State::FileSent;
    m->askedAt = m->askedAt == Time{0} ? now : Time{-1};
    std::uint8_t how = mFile.text ? zm::ConvertText : zm::ConvertBinary;
    if (mFile.resume) how = zm::ConvertResume;
    m->writer.Binary(OutputBuffer(), ZModemHeader::WithFlags(zm::File, how));
    m->writer.Subpacket(OutputBuffer(), WriteZModemFileInfo(mFile), zm::EndWait);
    Arm(m->flow.RetryAfter(m->piece.Current()), now);
}

void ZModemSender::FileDone(bool bWhole) {
    Disarm();
    (bWhole ? mProgress.files : mProgress.skipped) += 1;
    m->state = State::NextFile;
    m->sums = 0;
    m->askedAt = Time{0};
    AskClose(bWhole);
}

void ZModemSender::SendFinish(Time now) {
    m->state = State::Finish;
    Enter(Phase::Closing);
    m->writer.Hex(OutputBuffer(), ZModemHeader::At(zm::Fin, 0));
    Arm(FinishEvery, now);
}

// Says again what has not been answered.
void ZModemSender::Repeat(Time now) {
    const bool quiet = !HasOutput(); // else the line has not even taken the last one
    switch (m->state) {
    case State::Hello:
        if (quiet || m->options.sGreeting.size() == OutputSize()) {
            m->writer.Hex(OutputBuffer(), ZModemHeader::At(zm::RqInit, 0));
        }
        Arm(HelloEvery, now);
        break;
    case State::Attention:
        if (quiet) SendAttention(now);
        break;
    case State::FileSent:
        if (quiet) SendFile(now);
        break;
    case State::Eof:
        if (quiet) SendEof(now);
        break;
    case State::Finish:
        if (++m->finishTries >= FinishTries) {
            End(Outcome::Success, "");
        } else {
            SendFinish(now);
        }
        break;
    default:
        break;
    }
    if (!quiet) Arm(m->flow.RetryAfter(m->piece.Current()), now);
}

void ZModemSender::OnTimer(Time now) {
    if (m->state != State::Data) {
        Repeat(now);
    } else if (HasOutput()) {
        Arm(m->flow.RetryAfter(m->piece.Current()), now);
    } else {
        // The window stayed full: an acknowledgement was lost, or what it should acknowledge. Or
        // all of it still stands before a slow line: so one piece asks, and a window follows only
        // when it was answered. A window each time would pile up, each copy with damage of its own
        // that the receiver asks for again.
        StartData(m->flow.AcknowledgedTo(), now);
        m->probing = true;
    }
}

} // namespace qncomm::transfer
