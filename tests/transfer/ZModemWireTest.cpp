#include "Crc.h"
#include "ZModemFileInfo.h"
#include "ZModemReader.h"
#include "ZModemWriter.h"

#include <gtest/gtest.h>

#include <vector>

namespace qncomm::testing {

using namespace transfer;

namespace {

using Item = ZModemReader::Item;

std::string HexOf(const ZModemHeader& header) {
    std::string out;
    ZModemWriter().Hex(out, header);
    return out;
}

// What a reader sees in `bytes` when they come in the given pieces.
std::vector<std::string> Seen(std::initializer_list<std::string_view> pieces) {
    ZModemReader reader;
    std::vector<std::string> seen;
    for (std::string_view piece : pieces) {
        for (Item item = reader.Next(piece); item != Item::None; item = reader.Next(piece)) {
            if (item == Item::Header) {
                seen.push_back("header " + std::to_string(reader.Header().type) + " "
                               + std::to_string(reader.Header().Position()));
                if (reader.Header().type == zm::Data || reader.Header().type == zm::SInit)
                    reader.ExpectData();
            } else if (item == Item::Data) {
                seen.push_back("data " + std::string(reader.Content()) + reader.End());
            } else {
                seen.push_back("other " + std::to_string(static_cast<int>(item)));
            }
        }
    }
    return seen;
}

} // namespace

TEST(Crc, HasThePublishedCheckValues) {
    EXPECT_EQ(Crc16High(0, "123456789"), 0x31C3);
    EXPECT_EQ(Crc16Low(0, "123456789"), 0x2189);
    EXPECT_EQ(~Crc32(Crc32Start, "123456789"), 0xCBF43926U);
}

TEST(Crc, IsTheSameInOnePieceAndInTwo) {
    const std::string_view bytes = "The quick brown fox";
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        EXPECT_EQ(Crc32(Crc32(Crc32Start, bytes.substr(0, cut)), bytes.substr(cut)),
                  Crc32(Crc32Start, bytes));
    }
}

TEST(ZModemWire, WritesTheHexHeadersThatEveryProgramKnows) {
    EXPECT_EQ(HexOf(ZModemHeader::At(zm::RqInit, 0)), "**\x18"
                                                      "B00000000000000\r\x8A\x11");
    EXPECT_EQ(HexOf(ZModemHeader::WithFlags(zm::RInit, 0x23)), "**\x18"
                                                               "B0100000023be50\r\x8A\x11");
    EXPECT_EQ(HexOf(ZModemHeader::At(zm::Fin, 0)), "**\x18"
                                                   "B0800000000022d\r\x8A");
}

TEST(ZModemWire, EscapesWhatLinesEat) {
    std::string out;
    ZModemWriter writer;
    writer.Subpacket(out, std::string_view("a\x10\x11\x13\x18\x90\x91\x93@\r", 10), zm::EndFrame);
    EXPECT_EQ(out.substr(0, 18),
              "a\x18\x50\x18\x51\x18\x53\x18\x58\x18\xD0\x18\xD1\x18\xD3@\x18\x4D");
    EXPECT_EQ(out.substr(18, 2), "\x18h");
}

TEST(ZModemWire, EscapesEveryControlCharacterWhenTold) {
    std::string out;
    ZModemWriter writer;
    writer.EscapeControls(true);
    std::string all;
    for (int c = 0; c < 256; ++c) {
        all.push_back(static_cast<char>(c));
    }
    writer.Subpacket(out, all, zm::EndFrame);
    for (const char c : out) {
        EXPECT_TRUE((c & 0x60) != 0 || c == zm::Dle) << static_cast<int>(c);
    }
}

TEST(ZModemWire, IsReadTheSameHoweverItIsCut) {
    for (const bool crc32 : {false, true}) {
        ZModemWriter writer;
        writer.UseCrc32(crc32);
        std::string line = "noise*\x18";
        writer.Hex(line, ZModemHeader::At(zm::RPos, 70000));
        writer.Binary(line, ZModemHeader::At(zm::Data, 0x11131810));
        writer.Subpacket(line, "abc\x18\x11", zm::EndGo);
        writer.Subpacket(line, "", zm::EndFrame);
        writer.Hex(line, ZModemHeader::At(zm::SInit, 0));
        ZModemWriter().Subpacket(line, "attn", zm::EndWait);
        line += "OO";
        const auto whole = Seen({line});
        ASSERT_EQ(whole.size(), 7U);
        EXPECT_EQ(whole[2], "data abc\x18\x11i");
        EXPECT_EQ(whole[5], "data attnk");
        for (std::size_t cut = 0; cut <= line.size(); ++cut) {
            EXPECT_EQ(
                Seen({std::string_view(line).substr(0, cut), std::string_view(line).substr(cut)}),
                whole);
        }
    }
}

TEST(ZModemWire, EveryFlippedBitIsFound) {
    ZModemWriter writer;
    writer.UseCrc32(true);
    std::string line;
    writer.Binary(line, ZModemHeader::At(zm::Data, 5));
    writer.Subpacket(line, "content", zm::EndFrame);
    for (std::size_t bit = 0; bit < line.size() * 8; ++bit) {
        std::string damaged = line;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        const auto seen = Seen({damaged});
        EXPECT_TRUE(seen.size() < 2 || seen[1] != "data contenth" || seen[0] != "header 10 5");
        for (const auto& item : seen) {
            EXPECT_TRUE(item.rfind("data", 0) != 0 || item == "data contenth") << item;
        }
    }
}

TEST(ZModemWire, FiveCansCancelAnywhere) {
    EXPECT_EQ(Seen({"x\x18\x18\x18", "\x18\x18"}).back(), "other 5");
    std::string line;
    ZModemWriter().Binary(line, ZModemHeader::At(zm::Data, 0));
    EXPECT_EQ(Seen({line + "content\x18\x18\x18\x18\x18"}).back(), "other 5");
}

TEST(ZModemWire, ASubpacketWithoutEndIsDamage) {
    std::string line;
    ZModemWriter().Binary(line, ZModemHeader::At(zm::Data, 0));
    line.append(ZModemReader::MaxSubpacket + 1, 'x');
    EXPECT_EQ(Seen({line}).back(), "other 4");
}

TEST(ZModemFileInfo, ComesBackAsItWasWritten) {
    FileInfo file;
    file.name = "a name.bin";
    file.size = 123456789;
    file.modified = 1700000000;
    file.mode = 0640;
    file.filesLeft = 3;
    const FileInfo read = ReadZModemFileInfo(WriteZModemFileInfo(file));
    EXPECT_EQ(read.name, file.name);
    EXPECT_EQ(read.size, file.size);
    EXPECT_EQ(read.modified, file.modified);
    EXPECT_EQ(read.mode, file.mode);
    EXPECT_EQ(read.filesLeft, file.filesLeft);
}

TEST(ZModemFileInfo, TakesWhatIsThereAndNoMore) {
    EXPECT_EQ(ReadZModemFileInfo("bare").name, "bare");
    const FileInfo file = ReadZModemFileInfo(std::string_view("n\0 12 junk\0", 11));
    EXPECT_EQ(file.size, 12U);
    EXPECT_FALSE(file.modified);
}

} // namespace qncomm::testing
