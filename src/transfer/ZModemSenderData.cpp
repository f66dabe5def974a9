#include "ZModemSenderMachine.h"

namespace qncomm::transfer {

namespace {

constexpr int RestartLimit = 300;

} // namespace

void ZModemSender::OnReposition(std::uint64_t position, Time now) {
    if (m->state == State::FileSent || m->state == State::Checksum) {
        if (m->askedAt > Time{0}) m->flow.SawRoundTrip(now - m->askedAt);
        m->furthest = position;
        m->endSaid = false;
        m->restarts = 0;
        mProgress.bytes = position;
        m->flow.Restart(position);
        StartData(position, now);
        return;
    }
    if ((m->state != State::Data && m->state != State::Eof) || position > m->furthest) return;
    // Asked for twice, for one loss: the first request is already on its way to being met.
    const bool again =
        position == m->restartedTo && now - m->restartedAt < m->flow.ShortestRoundTrip();
    if (again && m->position > position) return;
    ++mProgress.repairs;
    m->piece.Lost();
    m->flow.SetErrorRate(m->piece.ErrorRate());
    m->flow.Settle();
    StartData(position, now);
}

// A new frame from `position` on; what is still in the output belongs to the old one.
void ZModemSender::StartData(std::uint64_t position, Time now) {
    if (position > m->flow.AcknowledgedTo()) {
        m->restarts = 0;
        mProgress.bytes = position;
    } else if (++m->restarts > RestartLimit) {
        Fail("the line damages everything that is sent");
        return;
    }
    const bool cut = HasOutput();
    DropOutput();
    if (cut) Put("******"); // the cut may have left the receiver inside an escape or a sum
    m->flow.Restart(position);
    m->state = State::Data;
    Enter(Phase::Moving);
    m->position = position;
    m->marked = position;
    m->frameOpen = false;
    m->frameAwaited = false;
    m->probing = false;
    m->atEnd = false;
    m->restartedAt = now;
    m->restartedTo = position;
    Arm(m->flow.RetryAfter(m->piece.Current()), now);
}

void ZModemSender::OnAcknowledge(std::uint64_t position, Time now) {
    if (m->state == State::Attention) {
        AskNextFile();
        return;
    }
    if ((m->state != State::Data && m->state != State::Eof) || position > m->position
        || position < m->flow.AcknowledgedTo()) {
        return;
    }
    if (position > m->flow.AcknowledgedTo()) m->restarts = 0;
    m->probing = false;
    m->piece.Travelled(static_cast<std::size_t>(position - m->flow.AcknowledgedTo()));
    m->flow.Acknowledged(position, now);
    // A piece should not occupy a slow line for long: what is behind it waits for it.
    m->flow.SetErrorRate(m->piece.ErrorRate());
    if (m->flow.Rate() > 0) m->piece.Limit(static_cast<std::size_t>(m->flow.Rate() / 2));
    mProgress.bytes = position;
    if (m->frameAwaited && position == m->position) m->frameAwaited = false;
    if (m->state == State::Data) Arm(m->flow.RetryAfter(m->piece.Current()), now);
}

std::uint64_t ZModemSender::Room() const {
    if (m->frameAwaited) return 0;
    const std::uint64_t size = m->options.window != 0
                                   ? std::min(m->options.window, m->flow.Size(m->piece.Current()))
                                   : m->flow.Size(m->piece.Current());
    const std::uint64_t underWay = m->position - m->flow.AcknowledgedTo();
    return size > underWay ? size - underWay : 0;
}

void ZModemSender::OnProduce(Time now) {
    if (m->state != State::Data) return;
    const bool covered = m->position >= m->aheadAt && m->position < m->aheadAt + m->ahead.size();
    if (m->atEnd) {
        if (m->frameOpen) m->writer.Subpacket(OutputBuffer(), {}, zm::EndFrame);
        m->frameOpen = false;
        SendEof(now);
    } else if (!covered) {
        AskRead(m->position);
    } else if (Room() > 0) {
        SendPiece(now);
    }
}

void ZModemSender::OnRead(const transfer::Answer& answer, Time now) {
    if (m->state == State::Checksum) {
        const auto left = static_cast<std::size_t>(m->checksumEnd - m->checksumAt);
        const auto data = answer.data.substr(0, left);
        m->checksum = Crc32(m->checksum, data);
        m->checksumAt += data.size();
        if (!data.empty() && m->checksumAt < m->checksumEnd) {
            AskRead(m->checksumAt);
            return;
        }
        m->writer.Hex(OutputBuffer(), ZModemHeader::At(zm::Crc, ~m->checksum));
        m->state = State::FileSent;
        Arm(m->flow.RetryAfter(m->piece.Current()), now);
        return;
    }
    if (m->state != State::Data) return;
    m->ahead.assign(answer.data);
    m->aheadAt = m->position;
    m->atEnd = answer.data.empty();
}

void ZModemSender::SendPiece(Time now) {
    if (!m->frameOpen) {
        m->writer.Binary(OutputBuffer(),
                         ZModemHeader::At(zm::Data, static_cast<std::uint32_t>(m->position)));
        m->frameOpen = true;
        m->frameStart = m->position;
    }
    const auto from = static_cast<std::size_t>(m->position - m->aheadAt);
    std::size_t length = std::min(m->piece.Current(), m->ahead.size() - from);
    if (m->segment != 0) {
        const auto left = m->segment - static_cast<std::size_t>(m->position - m->frameStart);
        length = std::min(length, left);
    }
    while (length > 1 && m->flow.MayAnswerFormer(m->position + length)) {
        --length;
    }
    if (m->position + length >= zm::MostPositions) {
        Fail("the file is too long for ZModem");
        return;
    }
    const std::string_view data = std::string_view(m->ahead).substr(from, length);
    m->position += length;
    m->furthest = std::max(m->furthest, m->position);

    char end = zm::EndGo;
    const std::uint64_t room = Room();
    const bool segmentFull = m->segment != 0 && m->position - m->frameStart >= m->segment;
    if (m->probing || segmentFull) {
        end = zm::EndWait;
        m->frameOpen = false;
        m->frameAwaited = true;
    } else if (mFile.size && m->position == *mFile.size) {
        end = zm::EndFrame;
        m->frameOpen = false;
    } else if (room == 0 || !m->flow.IsAwaiting()
               || (m->position - m->marked) * 4 >= m->flow.Size(m->piece.Current())) {
        end = zm::EndQuery;
    }
    m->writer.Subpacket(OutputBuffer(), data, end);
    if (end == zm::EndQuery || end == zm::EndWait) {
        m->marked = m->position;
        m->flow.Marked(m->position, now);
    }
}

void ZModemSender::SendEof(Time now) {
    m->state = State::Eof;
    m->endSaid = true;
    Enter(Phase::Closing);
    m->writer.Hex(OutputBuffer(),
                  ZModemHeader::At(zm::Eof, static_cast<std::uint32_t>(m->position)));
    Arm(m->flow.RetryAfter(m->piece.Current()), now);
}

} // namespace qncomm::transfer
