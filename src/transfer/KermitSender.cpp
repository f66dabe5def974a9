#include "transfer/KermitSender.h"

#include "KermitAttributes.h"
#include "KermitCheck.h"
#include "KermitSenderMachine.h"

#include <algorithm>
#include <utility>

namespace qncomm::transfer {

namespace {

constexpr Time LongestRetry = std::chrono::seconds(10);
constexpr Time BreakEvery =
    std::chrono::milliseconds(330); // three of these: what a farewell may take
constexpr int BreakTries = 3;
// How receivers that cannot leave streaming call damage; they end the session with it.
constexpr std::string_view DamagedStream = "reliable link";
constexpr int OverTries = 3;
constexpr Time NakGuard = std::chrono::milliseconds(50);

} // namespace

KermitSender::KermitSender(KermitOptions options) : m(std::make_unique<Machine>(options)) {
    m->reader.StripParity(options.sevenBits);
    SetPatience(options.patience);
}

KermitSender::~KermitSender() = default;

void KermitSender::OnStart(Time now) {
    SendPacket(kermit::SendInit, ProposeKermitTerms(m->options), 0, now);
}

void KermitSender::OnGiveUp(const std::string& sReason) {
    const std::string text = sReason.empty() ? "cancelled by the sender" : sReason;
    Put(WriteKermitPacket(kermit::Error, m->sequence, m->coding.EncodeText(text, 80),
                          m->terms.check));
}

void KermitSender::OnSilence(Time) {
    Fail(m->state == State::Init ? "no Kermit receiver answered" : "the receiver fell silent");
}

bool KermitSender::OnInput(Time now) {
    switch (m->reader.Next(Input())) {
    case KermitReader::Item::None:
        return false;
    case KermitReader::Item::Packet:
        OnPacket(now);
        break;
    case KermitReader::Item::Damage:
        break; // the timer repeats what was not answered
    }
    return true;
}

void KermitSender::OnPacket(Time now) {
    const KermitPacket& packet = m->reader.Packet();
    switch (packet.type) {
    case kermit::Ack:
        Heard(now);
        OnAck(packet.sequence, packet.data, now);
        break;
    case kermit::Nak:
        Heard(now);
        if (m->terms.streaming && mFileOpen && packet.data == kermit::StopStreamingText) {
            StopStreaming(packet.sequence, now);
        } else {
            OnNak(packet.sequence, now);
        }
        break;
    case kermit::Error:
        OnError(now);
        break;
    default:
        break; // an echo of our own
    }
}

void KermitSender::OnError(Time now) {
    std::string text;
    m->coding.Decode(m->reader.Packet().data, text);
    const std::string reason = "the receiver stopped: " + text;
    if (m->terms.streaming && mFileOpen && text.find(DamagedStream) != std::string::npos) {
        StartOver(reason, now);
    } else {
        DropOutput();
        End(Outcome::CancelledThere, reason);
    }
}

void KermitSender::SendPacket(char type, const std::string& data, std::size_t content, Time now) {
    const unsigned check = type == kermit::SendInit ? 1 : m->terms.check;
    Slot slot;
    slot.type = type;
    slot.sequence = m->sequence;
    slot.content = content;
    slot.packet = WriteKermitPacket(type, m->sequence, data, check);
    m->sequence = kermit::Next(m->sequence);
    m->slots.push_back(std::move(slot));
    Transmit(m->slots.back(), now);
}

void KermitSender::Transmit(Slot& slot, Time now) {
    Put(slot.packet);
    m->sentBytes += slot.packet.size();
    slot.position = m->sentBytes;
    slot.sentAt = now;
    m->flow.Marked(slot.position, now);
    ArmRetry(now);
}

void KermitSender::Resend(Slot& slot, Time now) {
    ++slot.tries;
    ++mProgress.repairs;
    m->piece.Lost();
    m->flow.SetErrorRate(m->piece.ErrorRate());
    m->flow.Settle();
    Transmit(slot, now);
}

void KermitSender::ArmRetry(Time now) {
    Time span = m->flow.RetryAfter(m->piece.Current());
    span = std::min(span * (1 << std::min(m->timeouts, 4)), std::max(span, LongestRetry));
    Arm(m->state == State::Break ? BreakEvery : span, now);
}

void KermitSender::OnTimer(Time now) {
    if (HasOutput() || m->slots.empty()) {
        ArmRetry(now);
        return;
    }
    ++m->timeouts;
    if (m->state == State::Break && m->timeouts >= BreakTries) {
        End(Outcome::Success, ""); // every file was acknowledged
        return;
    }
    if (!m->ended.empty() && m->state == State::Init && m->timeouts >= OverTries) {
        End(Outcome::CancelledThere, m->ended);
        return;
    }
    const auto first = std::find_if(m->slots.begin(), m->slots.end(),
                                    [](const Slot& slot) { return !slot.acknowledged; });
    if (first != m->slots.end()) Resend(*first, now);
}

void KermitSender::OnAck(unsigned sequence, const std::string& data, Time now) {
    if (m->terms.streaming && m->state == State::Data) {
        OnReply(kermit::DataPacket, data, now); // a sign of life, or the file is not wanted
        return;
    }
    if (m->slots.empty()) return;
    const std::size_t at = kermit::After(m->slots.front().sequence, sequence);
    if (at >= m->slots.size() || m->slots[at].acknowledged) return;
    Slot& slot = m->slots[at];
    slot.acknowledged = true;
    slot.reply = data;
    m->timeouts = 0;
    m->flow.Acknowledged(slot.position, now, slot.tries == 0);
    m->piece.Travelled(slot.packet.size());
    m->flow.SetErrorRate(m->piece.ErrorRate());
    if (m->flow.Rate() > 0) m->piece.Limit(static_cast<std::size_t>(m->flow.Rate() / 2));
    const std::uint64_t position = slot.position;
    const bool timed = slot.tries == 0;
    ArmRetry(now);
    // The line keeps its order: what was sent before and is not answered now was lost, or its
    // answer was.
    for (Slot& earlier : m->slots) {
        if (timed && !earlier.acknowledged && earlier.position < position) Resend(earlier, now);
    }
    OnWindowAcknowledged(now);
}

void KermitSender::OnWindowAcknowledged(Time now) {
    while (!m->slots.empty() && m->slots.front().acknowledged && PendingRequest() == nullptr) {
        RetireFront(now);
    }
}

void KermitSender::RetireFront(Time now) {
    const Slot slot = std::move(m->slots.front());
    m->slots.pop_front();
    mProgress.bytes += slot.content;
    if (mProgress.size) mProgress.bytes = std::min(mProgress.bytes, *mProgress.size);
    OnReply(slot.type, slot.reply, now);
}

void KermitSender::OnNak(unsigned sequence, Time now) {
    if (m->slots.empty()) return;
    const std::size_t at = kermit::After(m->slots.front().sequence, sequence);
    const Time guard = std::max(m->flow.ShortestRoundTrip(), NakGuard);
    if (at < m->slots.size()) {
        Slot& slot = m->slots[at];
        if (!slot.acknowledged && now - slot.sentAt >= guard) Resend(slot, now);
        return;
    }
    // Wanting the packet after the last one says that the last one has come, but not what it was
    // answered with; and nothing of others before it: some receivers ask for what follows the
    // newest packet when they cannot tell which one was damaged.
    const auto open = std::count_if(m->slots.begin(), m->slots.end(),
                                    [](const Slot& slot) { return !slot.acknowledged; });
    Slot& last = m->slots.back();
    if (sequence != m->sequence || open != 1 || last.acknowledged) return;
    if (last.type == kermit::SendInit || last.type == kermit::AttributesPacket) {
        if (now - last.sentAt >= guard) Resend(last, now);
        return;
    }
    last.acknowledged = true;
    m->flow.Acknowledged(m->sentBytes, now, false);
    OnWindowAcknowledged(now);
}

// Damage on a line that promised none. What streamed was not kept and its sequences have come round
// many times, so the file is announced again under the one that the receiver awaits: what is still
// under way it tells from that.
void KermitSender::StopStreaming(unsigned sequence, Time now) {
    m->terms.streaming = false;
    DropUnderWay();
    m->sequence = sequence;
    mFile.resume = m->terms.resume && !mFile.text;
    AnnounceFile(now);
}

void KermitSender::DropUnderWay() {
    ++mProgress.repairs;
    DropOutput();
    m->slots.clear();
    m->timeouts = 0;
    m->flow.Restart(m->sentBytes);
}

// The receiver has ended the session because of damage. One that serves goes on listening: the file
// is sent to it again, in windows. One that has left says nothing, and its reason stands.
void KermitSender::StartOver(const std::string& sReason, Time now) {
    DropUnderWay();
    m->ended = sReason;
    m->options.reliable = false;
    m->terms = {};
    m->coding = KermitCoding(m->terms, KermitPrefixing::All);
    m->reader.SetCheck(m->terms.check);
    m->sequence = 0;
    m->state = State::Init;
    OnStart(now);
}

} // namespace qncomm::transfer
