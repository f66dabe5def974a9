#include "KermitAttributes.h"
#include "KermitCheck.h"
#include "KermitCoding.h"
#include "KermitReader.h"
#include "KermitTerms.h"
#include "testing/transfer/MemoryFiles.h"

#include <gtest/gtest.h>

#include <vector>

namespace qncomm::testing {

using namespace transfer;

namespace {

using Item = KermitReader::Item;

std::vector<std::string> Seen(unsigned check, std::initializer_list<std::string_view> pieces) {
    KermitReader reader;
    reader.SetCheck(check);
    std::vector<std::string> seen;
    for (std::string_view piece : pieces) {
        for (Item item = reader.Next(piece); item != Item::None; item = reader.Next(piece)) {
            const auto& packet = reader.Packet();
            seen.push_back(item == Item::Damage
                               ? "damage"
                               : packet.type + std::to_string(packet.sequence) + packet.data);
        }
    }
    return seen;
}

std::string Coded(const KermitTerms& terms, KermitPrefixing prefixing, std::string_view bytes) {
    return KermitCoding(terms, prefixing).EncodeText(bytes, 10000);
}

KermitTerms Terms(char bit, char repeat) {
    KermitTerms terms;
    terms.bitPrefix = bit;
    terms.repeatPrefix = repeat;
    return terms;
}

} // namespace

TEST(KermitWire, WritesThePacketsThatEveryProgramKnows) {
    EXPECT_EQ(WriteKermitPacket('N', 0, "", 1), "\x01# N3\r");
    EXPECT_EQ(WriteKermitPacket('Y', 0, "", 1), "\x01# Y>\r");
    EXPECT_EQ(WriteKermitPacket('B', 5, "", 1), "\x01#%B,\r");
}

TEST(KermitWire, ChecksHaveTheirWidths) {
    EXPECT_EQ(KermitCheck(1, "# N"), "3");
    EXPECT_EQ(KermitCheck(2, "# N"), "\"1");        // the sum is 145: 2 and 17
    EXPECT_EQ(KermitCheck(3, "123456789"), "\"&)"); // 0x2189
}

TEST(KermitWire, IsReadTheSameHoweverItIsCut) {
    for (const unsigned check : {1U, 2U, 3U}) {
        const std::string line = "noise\x01" + WriteKermitPacket('F', 2, "NAME", check) + "\n"
                                 + WriteKermitPacket('D', 3, std::string(500, 'x'), check)
                                 + WriteKermitPacket('D', 63, "", check)
                                 + WriteKermitPacket('S', 0, "~* @-#Y3", 1);
        const std::vector<std::string> whole = {"F2NAME", "D3" + std::string(500, 'x'), "D63",
                                                "S0~* @-#Y3"};
        EXPECT_EQ(Seen(check, {line}), whole);
        for (std::size_t cut = 0; cut <= line.size(); ++cut) {
            EXPECT_EQ(Seen(check, {std::string_view(line).substr(0, cut),
                                   std::string_view(line).substr(cut)}),
                      whole);
        }
    }
}

TEST(KermitWire, EveryFlippedBitIsFound) {
    for (const unsigned check : {1U, 2U, 3U}) {
        const std::string packet = WriteKermitPacket('D', 3, "content", check);
        for (std::size_t bit = 0; bit < (packet.size() - 1) * 8; ++bit) {
            std::string damaged = packet;
            damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
            for (const auto& item : Seen(check, {damaged})) {
                EXPECT_EQ(item, "damage");
            }
        }
    }
}

TEST(KermitWire, APacketThatIsCutOffGivesWayToTheNext) {
    const std::string packet = WriteKermitPacket('D', 3, "content", 3);
    EXPECT_EQ(Seen(3, {packet.substr(0, 6) + packet}),
              (std::vector<std::string>{"damage", "D3content"}));
}

// A length of 37 * 95 that is written as 36 and 95, and a short one of 95.
TEST(KermitWire, DigitsOfALengthThatAreFilledToTheBrimAreTaken) {
    std::string packet = std::string(" 'D") + kermit::ToChar(36) + kermit::ToChar(95);
    packet += KermitCheck(1, packet);
    packet += std::string(36 * 95 + 95 - 3, 'x');
    packet += KermitCheck(3, packet);
    EXPECT_EQ(Seen(3, {"\x01" + packet}),
              std::vector<std::string>{"D7" + std::string(36 * 95 + 95 - 3, 'x')});
    packet = "\x7F'D" + std::string(90, 'x');
    packet += KermitCheck(3, packet);
    EXPECT_EQ(Seen(3, {"\x01" + packet}), std::vector<std::string>{"D7" + std::string(90, 'x')});
}

TEST(KermitWire, ParityIsStripped) {
    std::string packet = WriteKermitPacket('D', 3, "content", 3);
    for (char& c : packet) {
        c = static_cast<char>(c | 0x80);
    }
    KermitReader reader;
    reader.SetCheck(3);
    reader.StripParity(true);
    std::string_view in = packet;
    EXPECT_EQ(reader.Next(in), Item::Packet);
    EXPECT_EQ(reader.Packet().data, "content");
}

TEST(KermitCoding, PrefixesAsTheProtocolSays) {
    const auto plain = Terms(0, 0);
    EXPECT_EQ(Coded(plain, KermitPrefixing::All, std::string_view("a\x01\x7F#\0", 5)), "a#A#?###@");
    EXPECT_EQ(Coded(plain, KermitPrefixing::All, "\x81\xFF"), "#\xC1#\xBF");
    EXPECT_EQ(Coded(Terms('&', 0), KermitPrefixing::All, "\x81\xC1&"), "&#A&A#&");
    EXPECT_EQ(Coded(Terms(0, '~'), KermitPrefixing::All, "aaaab~"), "~$ab#~");
    EXPECT_EQ(Coded(Terms('&', '~'), KermitPrefixing::All, std::string(5, '\x81')), "~%&#A");
    EXPECT_EQ(Coded(plain, KermitPrefixing::Least, "\x02\x11\x01\r"), "\x02\x11#A#M");
    EXPECT_EQ(Coded(plain, KermitPrefixing::Cautious, "\x02\x11\x91"), "\x02#Q#\xD1");
}

TEST(KermitCoding, WhatIsCodedComesBack) {
    std::string bytes = RandomBytes(20000, 3) + std::string(300, '\0') + std::string(95, '~');
    for (int c = 0; c < 256; ++c) {
        bytes.append(static_cast<std::size_t>(c % 7), static_cast<char>(c));
    }
    for (const char bit : {'\0', '&'}) {
        for (const char repeat : {'\0', '~'}) {
            for (const auto prefixing :
                 {KermitPrefixing::All, KermitPrefixing::Cautious, KermitPrefixing::Least}) {
                const KermitCoding coding(Terms(bit, repeat), prefixing);
                for (const std::size_t room : {10U, 11U, 12U, 13U, 91U, 9000U}) {
                    std::string_view rest = bytes;
                    std::string back;
                    while (!rest.empty()) {
                        std::string data;
                        coding.Encode(rest, room, data);
                        ASSERT_LE(data.size(), room);
                        ASSERT_FALSE(data.empty());
                        ASSERT_TRUE(coding.Decode(data, back));
                        EXPECT_TRUE(bit == 0
                                    || data.find_first_of("\x80\xFF\xC1") == std::string::npos);
                    }
                    EXPECT_TRUE(back == bytes);
                }
            }
        }
    }
}

TEST(KermitCoding, RefusesAPrefixWithNothingBehindIt) {
    const KermitCoding coding(Terms('&', '~'), KermitPrefixing::All);
    std::string bytes;
    for (const std::string_view data : {"#", "&", "~", "~%", "~%&", "~%&#"}) {
        EXPECT_FALSE(coding.Decode(data, bytes)) << data;
    }
}

// The words of C-Kermit on a line that it was told is reliable, and on one that is not.
TEST(KermitTerms, StreamingIsWhatBothSidesSay) {
    const std::string streams = "~/ @-#Y3~^>J)0___N\"U1A";
    const std::string answers = "~/ @-#Y3~^>J)0___J\"U1A";
    const std::string waits = "~/ @-#Y3~^>J)0___F\"U1A";
    KermitOptions options;
    std::string reply;
    EXPECT_FALSE(AcceptKermitTerms(options, streams, reply).streaming);
    EXPECT_EQ(reply.find("___"), std::string::npos);
    options.reliable = true;
    EXPECT_TRUE(AcceptKermitTerms(options, streams, reply).streaming);
    EXPECT_TRUE(ConcludeKermitTerms(options, reply).streaming);
    EXPECT_TRUE(ConcludeKermitTerms(options, answers).streaming);
    EXPECT_FALSE(AcceptKermitTerms(options, waits, reply).streaming);
    EXPECT_FALSE(ConcludeKermitTerms(options, reply).streaming);
    EXPECT_TRUE(AcceptKermitTerms(options, ProposeKermitTerms(options), reply).streaming);
    for (std::size_t length = 0; length < 18; ++length)
        EXPECT_FALSE(AcceptKermitTerms(options, streams.substr(0, length), reply).streaming);
}

TEST(KermitAttributes, ComeBackAsTheyWereWritten) {
    FileInfo file;
    file.size = 123456789;
    file.modified = 1700000001;
    file.mode = 0640;
    file.resume = true;
    FileInfo read;
    ReadKermitAttributes(WriteKermitAttributes(file, 90), read);
    EXPECT_EQ(read.size, file.size);
    EXPECT_EQ(read.modified, file.modified);
    EXPECT_EQ(read.mode, file.mode);
    EXPECT_TRUE(read.resume);
    EXPECT_FALSE(read.text);
    EXPECT_EQ(WriteKermitAttributes(file, 90), "1)123456789+!R\"\"B8#120231114 22:13:21,#640");
}

TEST(KermitAttributes, KeepToTheirRoom) {
    FileInfo file;
    file.size = 123456789;
    file.modified = 1700000001;
    for (std::size_t room = 0; room < 60; ++room) {
        EXPECT_LE(WriteKermitAttributes(file, room).size(), room);
    }
}

TEST(KermitAttributes, PassOverWhatIsUnknownOrCutOff) {
    FileInfo file;
    ReadKermitAttributes("@!x1\"99*", file);
    EXPECT_EQ(file.size, 99U);
    EXPECT_EQ(ReadKermitResume(WriteKermitResume(4711)), 4711U);
    EXPECT_FALSE(ReadKermitResume("Y"));
}

} // namespace qncomm::testing
