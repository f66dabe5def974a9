#include "transfer/ZModemReceiver.h"

#include "ZModemReceiverMachine.h"

#include <algorithm>

namespace qncomm::transfer {

namespace {

using Wait = std::chrono::milliseconds;

constexpr Time ReadyEvery = Wait(3000);
constexpr Time NextFileEvery = Wait(1000);
constexpr int NextFileTries = 10;
constexpr Time FarewellEvery = Wait(330); // three of these are the second that a farewell may take
constexpr int FarewellTries = 3;
constexpr int SumTries = 3;
// A sender that speaks again behind this long begins with a header.
constexpr Time Pause = Wait(100);

} // namespace

ZModemReceiver::ZModemReceiver(ZModemReceiverOptions options)
    : m(std::make_unique<Machine>(options)) {
    SetPatience(options.patience);
}

ZModemReceiver::~ZModemReceiver() = default;

void ZModemReceiver::OnStart(Time now) {
    SendReady(now);
}

void ZModemReceiver::OnProduce(Time) {}

void ZModemReceiver::OnGiveUp(const std::string& /*sReason*/) {
    Put(zm::CancelText);
}

void ZModemReceiver::OnSilence(Time) {
    const bool started = mFileOpen || mProgress.files != 0;
    Fail(started ? "the sender fell silent" : "no ZModem sender answered");
}

bool ZModemReceiver::OnInput(Time now) {
    // The end of a subpacket was damaged, or the sender has given it up: what follows would be
    // taken for content as long as the sender says it again.
    const bool paused = now - std::exchange(m->lastByte, now) >= Pause;
    if (paused && m->reader.IsInsideData() && Input().starts_with(zm::PadByte))
        m->reader.ExpectHeader();
    switch (m->reader.Next(Input())) {
    case ZModemReader::Item::None:
        return false;
    case ZModemReader::Item::Header:
        Heard(now);
        OnHeader(now);
        break;
    case ZModemReader::Item::Data:
        Heard(now);
        OnContent(now);
        break;
    case ZModemReader::Item::BadHeader:
        OnDamage(true, now);
        break;
    case ZModemReader::Item::BadData:
        OnDamage(false, now);
        break;
    case ZModemReader::Item::Cancel:
        End(Outcome::CancelledThere, "cancelled by the sender");
        break;
    case ZModemReader::Item::Farewell:
        if (m->state == State::Finished) End(Outcome::Success, "");
        break;
    }
    return true;
}

void ZModemReceiver::OnHeader(Time now) {
    const ZModemHeader& header = m->reader.Header();
    switch (header.type) {
    case zm::File:
    case zm::SInit:
    case zm::Command:
        m->contentOf = header.type;
        m->reader.ExpectData();
        break;
    case zm::Data:
        OnDataHeader(header.Position(), now);
        break;
    case zm::Crc:
        OnSum(header.Position(), now);
        break;
    case zm::Eof:
        OnEof(header.Position(), now);
        break;
    case zm::Fin:
        OnFin(now);
        break;
    default:
        OnAnyTimeHeader(header.type, now);
        break;
    }
}

void ZModemReceiver::OnAnyTimeHeader(std::uint8_t type, Time now) {
    switch (type) {
    case zm::RqInit:
        if (m->state == State::Ready) SendReady(now);
        break;
    case zm::FreeCnt: // the free room is not told
        m->writer.Hex(OutputBuffer(), ZModemHeader::At(zm::Ack, 0xFFFFFFFFU));
        break;
    case zm::Nak:
        if (m->state == State::Ready) SendReady(now);
        if (m->state == State::Reposition) SendReposition(now);
        if (m->state == State::Compare) SendSumRequest(now);
        break;
    case zm::Skip: // the sender gives this file up
        if (mFileOpen) {
            m->state = State::Closing;
            AskClose(false);
        }
        break;
    case zm::Abort:
    case zm::Can:
        End(Outcome::CancelledThere, "cancelled by the sender");
        break;
    case zm::FErr:
        Fail("the sender could not read the file");
        break;
    default:
        break;
    }
}

void ZModemReceiver::OnFin(Time now) {
    if (mFileOpen) {
        Fail("the sender ended the session before the file was whole");
        return;
    }
    if (m->state != State::Finished) ArmFixed(FarewellEvery * FarewellTries, now);
    m->state = State::Finished;
    Enter(Phase::Closing);
    m->writer.Hex(OutputBuffer(), ZModemHeader::At(zm::Fin, 0));
}

void ZModemReceiver::OnDamage(bool bHeader, Time now) {
    switch (m->state) {
    case State::Ready:
        m->writer.Hex(OutputBuffer(), ZModemHeader::At(zm::Nak, 0));
        break;
    case State::Data:
        ++mProgress.repairs;
        SendReposition(now);
        break;
    case State::Reposition:
        if (bHeader) SendReposition(now);
        break;
    case State::Compare:
        if (bHeader) SendSumRequest(now);
        break;
    default:
        break;
    }
}

void ZModemReceiver::SendReady(Time now) {
    m->state = State::Ready;
    std::uint8_t flags = zm::CanFullDuplex | zm::CanOverlapIo | zm::CanBreak;
    if (m->options.crc32) flags |= zm::CanCrc32;
    if (m->options.escapeControls) flags |= zm::EscapeControlsFlag;
    ZModemHeader header = ZModemHeader::WithFlags(zm::RInit, flags);
    header.bytes[0] = static_cast<std::uint8_t>(m->options.buffer & 0xFFU);
    header.bytes[1] = static_cast<std::uint8_t>(m->options.buffer >> 8U);
    m->writer.Hex(OutputBuffer(), header);
    Time span = ReadyEvery;
    if (mProgress.files + mProgress.skipped != 0) {
        const bool last = mFile.filesLeft && *mFile.filesLeft <= 1;
        span = last ? std::max(FarewellEvery, m->roundTrip.Shortest() * 3 / 2) : NextFileEvery;
    }
    Arm(span, now);
}

void ZModemReceiver::OnTimer(Time now) {
    switch (m->state) {
    case State::Ready:
        OnReadyTimer(now);
        break;
    case State::Reposition:
    case State::Data: {
        // While bytes still come they are what was sent before the sender heard; silence is what
        // counts, up to a limit.
        const Time quiet = m->roundTrip.RetryAfter();
        const bool flowing = now - m->lastByte < quiet;
        if (flowing && m->state == State::Data) {
            ArmData(now);
        } else if (flowing && ++m->tries % 8 != 0) {
            Arm(quiet, now);
        } else {
            ++mProgress.repairs;
            SendReposition(now);
        }
        break;
    }
    case State::Compare:
        if (++m->tries < SumTries)
            SendSumRequest(now);
        else
            OfferAnew();
        break;
    case State::Finished:
        End(Outcome::Success, "");
        break;
    default:
        break;
    }
}

// Between files a lost word is said again; after the last file silence is the sender's farewell.
void ZModemReceiver::OnReadyTimer(Time now) {
    if (mProgress.files + mProgress.skipped == 0) {
        if (HasOutput()) {
            Arm(ReadyEvery, now);
        } else {
            SendReady(now);
        }
        return;
    }
    const bool last = mFile.filesLeft && *mFile.filesLeft <= 1;
    if (++m->tries < (last ? FarewellTries : NextFileTries)) {
        SendReady(now);
    } else if (last || !mFile.filesLeft) {
        End(Outcome::Success, "");
    } else {
        Fail("the sender fell silent between files");
    }
}

} // namespace qncomm::transfer
