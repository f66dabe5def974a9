// Senders and receivers of files that flood, lie, crawl, fall silent and vanish: the command line
// ends in the memory that it has, by itself or by Ctrl-C, says why, and leaves no file.

#include "TransferFixture.h"

#include "KermitCheck.h"
#include "ZModemWriter.h"
#include "testing/line/HostilePeer.h"
#include "testing/line/PtyPair.h"

#include <csignal>

namespace qncomm::testing {
namespace {

using transfer::WriteKermitPacket;
using transfer::ZModemHeader;
using transfer::ZModemWriter;
namespace zm = transfer::zm;
using Round = HostilePeer::Rounds;

constexpr int WatchdogMs = 40'000;
constexpr int Cancelled = 130;

/// The heap that a program may have, which is far less than what a flood brings. The sanitizers
/// keep memory of their own.
Arguments Limited() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return {};
#else
    return {"bash", "-c", "ulimit -d 24576; exec \"$@\"", "bash"};
#endif
}

// -- What peers say

std::string Hex(std::uint8_t type, std::uint32_t position) {
    std::string text;
    ZModemWriter().Hex(text, ZModemHeader::At(type, position));
    return text;
}
/// A binary header with one subpacket.
std::string Frame(std::uint8_t type, std::uint32_t position, std::string_view content, char end) {
    std::string text;
    ZModemWriter().Binary(text, ZModemHeader::At(type, position));
    ZModemWriter().Subpacket(text, content, end);
    return text;
}
std::string Piece(std::string_view content, char end) {
    std::string text;
    ZModemWriter().Subpacket(text, content, end);
    return text;
}
std::string Offer(const std::string& name, const std::string& facts) {
    using namespace std::string_literals;
    return Frame(zm::File, 0, name + "\0"s + facts + "\0"s, zm::EndWait);
}

/// The same in each round.
Round Always(std::string text) {
    // Long enough that the peer is no slower than the line.
    while (text.size() < 8192)
        text += text;
    return [text = std::move(text)](unsigned) { return text; };
}
/// Many rounds in one.
Round Each(const std::function<std::string(unsigned)>& round) {
    return [round](unsigned n) {
        constexpr unsigned many = 256;
        std::string text;
        for (unsigned i = 0; i < many; ++i)
            text += round(n * many + i);
        return text;
    };
}
std::string KermitPacket(char type, unsigned sequence, std::string_view data) {
    return WriteKermitPacket(type, sequence % 64U, data, 1);
}

const std::string KermitTerms = "~$ @-#N1~*!J*0```J";

enum class Side { ZModemSender, ZModemReceiver, KermitSender, KermitReceiver };

struct Peer {
    const char* name;
    Side side; ///< the peer's
    Manner manner;
    std::string opening;
    Round rounds = {};
};

std::ostream& operator<<(std::ostream& out, const Peer& peer) {
    return out << peer.name;
}

class HostilePeers : public TransferFixture, public ::testing::WithParamInterface<Peer> {
  protected:
    Arguments Command() const {
        const Side side = GetParam().side;
        const bool sends = side == Side::ZModemSender || side == Side::KermitSender;
        const bool zmodem = side == Side::ZModemSender || side == Side::ZModemReceiver;
        return {"binary",     sends ? "receive" : "send",   PathOf(sends ? "folder/got" : "data"),
                "--protocol", zmodem ? "zmodem" : "kermit", "--quiet"};
    }
};

TEST_P(HostilePeers, AreEndedWithoutAFileAndInLittleMemory) {
    WriteHostFile("data", Content(200'000));
    MakeFolder("folder");
    PtyPair line = OpenPty();
    SetPort(line.path);
    HostilePeer peer(std::move(line.master), GetParam().opening, GetParam().manner,
                     GetParam().rounds);
    const auto program = Start(OnPort(Command()), Program::Stdio::Pipes, Limited());
    peer.AwaitEnough();
    if (GetParam().manner != Manner::Vanish) program->Signal(SIGINT);
    const Ended ended = EndedOf(*program, WatchdogMs);
    // A program that had given the peer up by itself is on its way out when the signal comes.
    constexpr int bySignal = 1000 + SIGINT;
    const auto how = GetParam().manner == Manner::Vanish
                         ? ::testing::AnyOf(1, 4, 1, 1)
                         : ::testing::AnyOf(1, 4, Cancelled, bySignal);
    EXPECT_THAT(ended.status, how) << ended.err;
    EXPECT_NE(ended.err, "");
    EXPECT_TRUE(FolderIsEmpty("folder"));
    std::cout << "figure: " << GetParam().name << ": status " << ended.status << ", "
              << ended.peakKb << " KiB at most: " << ended.err;
}

const std::string Begun = Offer("x", "1000000 0 100644 0 1 1000000");
const std::string Noise = "PRICES OF TODAY\r\n";

INSTANTIATE_TEST_SUITE_P(
    ZModem, HostilePeers,
    ::testing::Values(
        Peer{"SenderOfNoise", Side::ZModemSender, Manner::Flood, "", Always(Noise)},
        Peer{"SenderOfPads", Side::ZModemSender, Manner::Flood, "", Always("*")},
        Peer{"SenderOfRequests", Side::ZModemSender, Manner::Flood, "", Always(Hex(zm::RqInit, 0))},
        Peer{"SenderOfFilesWithoutEnd", Side::ZModemSender, Manner::Flood, "",
             Each([](unsigned n) { return Offer("../" + std::to_string(n), "1"); })},
        Peer{"SenderOfALongName", Side::ZModemSender, Manner::Flood,
             Frame(zm::File, 0, std::string(1000, 'n'), zm::EndGo),
             Always(Piece(std::string(1000, 'n'), zm::EndGo))},
        Peer{"SenderOfAttention", Side::ZModemSender, Manner::Flood, "",
             Always(Frame(zm::SInit, 0, std::string(1024, 'a') + '\0', zm::EndWait))},
        Peer{"SenderOfPositionsThatAreNot", Side::ZModemSender, Manner::Flood, Begun,
             Always(Frame(zm::Data, 0xFFFFFFFFU, "x", zm::EndFrame))},
        Peer{"SenderOfAPieceWithoutEnd", Side::ZModemSender, Manner::Flood,
             Begun + Frame(zm::Data, 0, "x", zm::EndGo), Always("y")},
        Peer{"SenderOfAHugeSize", Side::ZModemSender, Manner::Silent,
             Offer("x", "99999999999999999999 0 0 0 1 99999999999999999999")},
        Peer{"SenderOfANegativeSize", Side::ZModemSender, Manner::Silent, Offer("x", "-1")},
        Peer{"SenderOfCommands", Side::ZModemSender, Manner::Flood, "",
             Always(Frame(zm::Command, 0, std::string("touch folder/hurt\0", 18), zm::EndWait))},
        Peer{"SenderOfEnds", Side::ZModemSender, Manner::Flood, Begun, Always(Hex(zm::Eof, 7))},
        Peer{"SenderThatCrawls", Side::ZModemSender, Manner::Crawl, "", Always(Begun)},
        Peer{"SenderThatFallsSilent", Side::ZModemSender, Manner::Silent,
             Begun + Frame(zm::Data, 0, "abc", zm::EndGo)},
        Peer{"SenderThatVanishes", Side::ZModemSender, Manner::Vanish,
             Begun + Frame(zm::Data, 0, "abc", zm::EndGo)},
        Peer{"ReceiverOfNoise", Side::ZModemReceiver, Manner::Flood, "", Always(Noise)},
        Peer{"ReceiverThatBeginsAnew", Side::ZModemReceiver, Manner::Flood, Hex(zm::RInit, 0),
             Always(Hex(zm::RPos, 0))},
        Peer{"ReceiverOfPositionsThatAreNot", Side::ZModemReceiver, Manner::Flood,
             Hex(zm::RInit, 0), Always(Hex(zm::RPos, 0xFFFFFFFFU))},
        Peer{"ReceiverOfSums", Side::ZModemReceiver, Manner::Flood, Hex(zm::RInit, 0),
             Always(Hex(zm::Crc, 0xFFFFFFFFU))},
        Peer{"ReceiverThatIsAlwaysReady", Side::ZModemReceiver, Manner::Flood, "",
             Always(Hex(zm::RInit, 0x23000000U))},
        Peer{"ReceiverOfTinyPieces", Side::ZModemReceiver, Manner::Silent,
             Hex(zm::RInit, 0x23000001U) + Hex(zm::RPos, 0)},
        Peer{"ReceiverThatCrawls", Side::ZModemReceiver, Manner::Crawl, "",
             Always(Hex(zm::RInit, 0))},
        Peer{"ReceiverThatVanishes", Side::ZModemReceiver, Manner::Vanish,
             Hex(zm::RInit, 0) + Hex(zm::RPos, 0)}),
    [](const auto& peer) { return peer.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Kermit, HostilePeers,
    ::testing::Values(
        Peer{"SenderOfNoise", Side::KermitSender, Manner::Flood, "", Always(Noise)},
        Peer{"SenderOfMarks", Side::KermitSender, Manner::Flood, "", Always("\x01")},
        Peer{"SenderOfBeginnings", Side::KermitSender, Manner::Flood, "",
             Always(KermitPacket('S', 0, KermitTerms))},
        Peer{"SenderOfFilesWithoutEnd", Side::KermitSender, Manner::Flood,
             KermitPacket('S', 0, KermitTerms),
             Each([](unsigned n) { return KermitPacket('F', n + 1, "../" + std::to_string(n)); })},
        Peer{"SenderOfAttributes", Side::KermitSender, Manner::Flood,
             KermitPacket('S', 0, KermitTerms) + KermitPacket('F', 1, "X"),
             Each([](unsigned n) { return KermitPacket('A', n + 2, "1.99999999999999"); })},
        Peer{"SenderOfLengthsThatAreNot", Side::KermitSender, Manner::Flood, "",
             Always("\x01 !D~~~~~")},
        Peer{"SenderThatCrawls", Side::KermitSender, Manner::Crawl, "",
             Always(KermitPacket('S', 0, KermitTerms))},
        Peer{"SenderThatFallsSilent", Side::KermitSender, Manner::Silent,
             KermitPacket('S', 0, KermitTerms) + KermitPacket('F', 1, "X")},
        Peer{"SenderThatVanishes", Side::KermitSender, Manner::Vanish,
             KermitPacket('S', 0, KermitTerms) + KermitPacket('F', 1, "X")},
        Peer{"ReceiverOfNoise", Side::KermitReceiver, Manner::Flood, "", Always(Noise)},
        Peer{"ReceiverThatTakesNothing", Side::KermitReceiver, Manner::Flood, "",
             Always(KermitPacket('N', 0, ""))},
        Peer{"ReceiverThatTakesTheWrongOnes", Side::KermitReceiver, Manner::Flood,
             KermitPacket('Y', 0, KermitTerms), Always(KermitPacket('Y', 40, ""))},
        Peer{"ReceiverThatCrawls", Side::KermitReceiver, Manner::Crawl, "",
             Always(KermitPacket('Y', 0, KermitTerms))},
        Peer{"ReceiverThatVanishes", Side::KermitReceiver, Manner::Vanish,
             KermitPacket('Y', 0, KermitTerms)}),
    [](const auto& peer) { return peer.param.name; });

} // namespace
} // namespace qncomm::testing
