#include "transfer/KermitReceiver.h"

#include "KermitCheck.h"
#include "KermitReceiverMachine.h"

#include <algorithm>

namespace qncomm::transfer {

namespace {

constexpr Time Silence = std::chrono::seconds(2);
constexpr Time LongestSilence = std::chrono::seconds(8);
constexpr Time BetweenFiles = std::chrono::seconds(1);
constexpr int FarewellSilences = 5;
constexpr Time SignOfLife = std::chrono::seconds(5);
constexpr Time AskAgain = std::chrono::seconds(1);

} // namespace

KermitReceiver::KermitReceiver(KermitOptions options) : m(std::make_unique<Machine>(options)) {
    m->reader.StripParity(options.sevenBits);
    SetPatience(options.patience);
}

KermitReceiver::~KermitReceiver() = default;

void KermitReceiver::OnStart(Time now) {
    ArmSilence(now);
}

void KermitReceiver::OnProduce(Time) {}

void KermitReceiver::OnGiveUp(const std::string& sReason) {
    const std::string text = sReason.empty() ? "cancelled by the receiver" : sReason;
    Put(WriteKermitPacket(kermit::Error, m->low, m->coding.EncodeText(text, 80), m->terms.check));
}

void KermitReceiver::OnSilence(Time) {
    Fail(m->state == State::Init ? "no Kermit sender answered" : "the sender fell silent");
}

void KermitReceiver::ArmSilence(Time now) {
    const bool between = m->state == State::Ready && mProgress.files + mProgress.skipped != 0;
    const Time span = std::min(Silence * (1 << std::min(m->silences, 2)), LongestSilence);
    Arm(between ? BetweenFiles : span, now);
}

void KermitReceiver::OnTimer(Time now) {
    if (m->broken) {
        AskForFile(now);
        ArmSilence(now);
        return;
    }
    if (IsStreaming()) return; // a sender that streams waits for nothing
    ++m->silences;
    const bool between = m->state == State::Ready && mProgress.files + mProgress.skipped != 0;
    if (between && m->silences >= FarewellSilences) {
        End(Outcome::Success, ""); // every file stands; the sender's last word was lost
        return;
    }
    if (!HasOutput()) SendNak(m->low);
    m->reader.Reset();
    ArmSilence(now);
}

void KermitReceiver::SendNak(unsigned sequence) {
    Put(WriteKermitPacket(kermit::Nak, sequence, {}, m->terms.check));
}

bool KermitReceiver::IsStreaming() const {
    return m->terms.streaming && m->state == State::File;
}

// Data that streams is acknowledged only now and then, as a sign of life, or when there is
// something to say.
void KermitReceiver::AcknowledgeData(const std::string& data) {
    if (IsStreaming() && data == m->said && LastHeard() - m->saidAt < SignOfLife) return;
    m->said = data;
    m->saidAt = LastHeard();
    Acknowledge(m->current.sequence, data);
}

// Damage on a line that promised none: what is written is whole, what streams behind it is let
// pass.
void KermitReceiver::StopStreaming(Time now) {
    m->terms.streaming = false;
    m->broken = true;
    m->askedAt = Time{0};
    ++mProgress.repairs;
    AskForFile(now);
    ArmSilence(now);
}

void KermitReceiver::AskForFile(Time now) {
    if (m->askedAt != Time{0} && now - m->askedAt < AskAgain) return;
    m->askedAt = now;
    Put(WriteKermitPacket(kermit::Nak, m->low, std::string(kermit::StopStreamingText),
                          m->terms.check));
}

void KermitReceiver::Acknowledge(unsigned sequence, const std::string& data) {
    m->replies[sequence] = data;
    Put(WriteKermitPacket(kermit::Ack, sequence, data, m->terms.check));
}

bool KermitReceiver::OnInput(Time now) {
    switch (m->reader.Next(Input())) {
    case KermitReader::Item::None:
        return false;
    case KermitReader::Item::Packet:
        OnPacket(now);
        break;
    case KermitReader::Item::Damage:
        OnDamage(now);
        break;
    }
    return true;
}

// While nothing later is here the damaged packet is most likely the next one; else the gap or the
// sender's timer tells.
void KermitReceiver::OnDamage(Time now) {
    if (m->broken) return;
    if (IsStreaming()) {
        StopStreaming(now);
        return;
    }
    ++mProgress.repairs;
    if (m->seen == 0 && OutputSize() < 32) SendNak(m->low);
}

void KermitReceiver::OnPacket(Time now) {
    const KermitPacket& packet = m->reader.Packet();
    if (packet.type == kermit::Ack || packet.type == kermit::Nak) return; // an echo of our own
    const unsigned after = kermit::After(m->low, packet.sequence);
    const bool announces = packet.type == kermit::FilePacket && after == 0;
    if (m->broken && !announces && packet.type != kermit::Error) {
        AskForFile(now);
        return;
    }
    Heard(now);
    m->silences = 0;
    ArmSilence(now);
    if (packet.type == kermit::Error) {
        std::string text;
        m->coding.Decode(packet.data, text);
        DropOutput();
        End(Outcome::CancelledThere, "the sender stopped: " + text);
        return;
    }
    if (packet.type == kermit::SendInit || packet.type == kermit::ServerInit) {
        OnOpening(now);
        return;
    }
    if (m->state == State::Init) return;
    const bool streams = packet.type == kermit::DataPacket || packet.type == kermit::EofPacket;
    if (after != 0 && streams && IsStreaming()) {
        StopStreaming(now);
    } else if (after == 0) {
        m->current = packet;
        Process(now);
    } else if (after < std::max(m->terms.window, 1U)) {
        OnLaterPacket();
    } else if (kermit::After(packet.sequence, m->low) <= kermit::MostSlots + 1) {
        Acknowledge(packet.sequence,
                    std::string(m->replies[packet.sequence])); // its answer was lost
    }
}

// The sender's terms; said again when the answer was lost.
void KermitReceiver::OnOpening(Time) {
    const KermitPacket& packet = m->reader.Packet();
    const bool again = kermit::Next(packet.sequence) == m->low && m->state == State::Ready;
    if (m->state != State::Init && !again) return;
    std::string reply;
    const KermitTerms terms = AcceptKermitTerms(m->options, packet.data, reply);
    Put(WriteKermitPacket(kermit::Ack, packet.sequence, reply, 1));
    if (packet.type == kermit::ServerInit) return;
    m->terms = terms;
    m->coding = KermitCoding(m->terms, KermitPrefixing::All);
    m->reader.SetCheck(m->terms.check);
    m->low = kermit::Next(packet.sequence);
    m->seen = 0;
    m->state = State::Ready;
}

// A packet after one that is missing: kept, and the missing ones are asked for once; a second loss
// the sender sees.
void KermitReceiver::OnLaterPacket() {
    const KermitPacket& packet = m->reader.Packet();
    const unsigned after = kermit::After(m->low, packet.sequence);
    if (packet.type != kermit::DataPacket || m->state != State::File) return;
    for (unsigned missing = m->seen == 0 ? 0 : m->seen + 1; missing < after; ++missing) {
        SendNak((m->low + missing) % kermit::Sequences);
    }
    m->seen = std::max(m->seen, after);
    m->early[packet.sequence] = packet.data;
    Acknowledge(packet.sequence, m->discard ? "X" : "");
}

// Goes on behind the packet that was just dealt with.
void KermitReceiver::TakeNext(Time now) {
    m->low = kermit::Next(m->low);
    if (m->seen > 0) --m->seen;
    const auto next = m->early.find(m->low);
    if (next == m->early.end()) return;
    m->current = {kermit::DataPacket, m->low, std::move(next->second)};
    m->early.erase(next);
    Process(now);
}

} // namespace qncomm::transfer
