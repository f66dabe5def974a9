#include "ZModemWriter.h"

#include "Crc.h"

#include <cstddef>

namespace qncomm::transfer {

namespace {

enum class Escaping : std::uint8_t {
    Plain,
    Always,
    AfterAt, // CR after '@' starts a command of some packet networks
};

using EscapeTable = std::array<Escaping, 256>;

constexpr EscapeTable MakeEscapes(bool bAll) {
    EscapeTable table{};
    for (unsigned c = 0; c < 256; ++c) {
        const unsigned low = c & 0x7FU;
        const bool eaten = low == 0x10 || low == 0x11 || low == 0x13;
        if (eaten || c == 0x18 || (bAll && low < 0x20)) {
            table[c] = Escaping::Always;
        } else if (low == 0x0D) {
            table[c] = Escaping::AfterAt;
        }
    }
    return table;
}

constexpr EscapeTable EscapeSome = MakeEscapes(false);
constexpr EscapeTable EscapeAll = MakeEscapes(true);

constexpr char HexDigits[] = "0123456789abcdef";

void PutHexByte(std::string& out, unsigned byte) {
    out.push_back(HexDigits[(byte >> 4U) & 0xFU]);
    out.push_back(HexDigits[byte & 0xFU]);
}

std::string HeaderBytes(const ZModemHeader& header) {
    std::string bytes(1, static_cast<char>(header.type));
    for (const auto byte : header.bytes) {
        bytes.push_back(static_cast<char>(byte));
    }
    return bytes;
}

} // namespace

void ZModemWriter::Hex(std::string& out, const ZModemHeader& header) const {
    const std::string bytes = HeaderBytes(header);
    out.append({zm::PadByte, zm::PadByte, zm::Dle, zm::HexFormat});
    for (const char c : bytes) {
        PutHexByte(out, static_cast<unsigned char>(c));
    }
    const unsigned crc = Crc16High(0, bytes);
    PutHexByte(out, crc >> 8U);
    PutHexByte(out, crc & 0xFFU);
    out.append("\r\x8A");
    // The XON wakes a line that a stray XOFF has stopped; after these two it would greet the next
    // program instead.
    if (header.type != zm::Ack && header.type != zm::Fin) out.push_back('\x11');
}

void ZModemWriter::Binary(std::string& out, const ZModemHeader& header) const {
    const std::string bytes = HeaderBytes(header);
    out.append({zm::PadByte, zm::Dle, mCrc32 ? zm::Bin32 : zm::Bin16});
    Escape(out, bytes);
    Sum(out, bytes, '\0');
}

void ZModemWriter::Subpacket(std::string& out, std::string_view data, char end) const {
    Escape(out, data);
    out.push_back(zm::Dle);
    out.push_back(end);
    Sum(out, data, end);
}

// The sum of `summed` and, for a subpacket, of its end mark.
void ZModemWriter::Sum(std::string& out, std::string_view summed, char end) const {
    const std::string_view mark(&end, end == '\0' ? 0 : 1);
    std::string sum;
    if (mCrc32) {
        const std::uint32_t crc = ~Crc32(Crc32(Crc32Start, summed), mark);
        for (unsigned shift = 0; shift < 32; shift += 8) {
            sum.push_back(static_cast<char>(crc >> shift));
        }
    } else {
        const unsigned crc = Crc16High(Crc16High(0, summed), mark);
        sum = {static_cast<char>(crc >> 8U), static_cast<char>(crc)};
    }
    Escape(out, sum);
}

void ZModemWriter::Escape(std::string& out, std::string_view bytes) const {
    const EscapeTable& table = mEscapeAll ? EscapeAll : EscapeSome;
    std::size_t run = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const Escaping escaping = table[static_cast<unsigned char>(bytes[i])];
        if (escaping == Escaping::Plain) continue;
        // At the start the byte before is not known here, so the rare CR is escaped to be safe.
        if (escaping == Escaping::AfterAt && i > 0 && (bytes[i - 1] & 0x7F) != '@') continue;
        out.append(bytes.substr(run, i - run));
        out.push_back(zm::Dle);
        out.push_back(static_cast<char>(bytes[i] ^ 0x40));
        run = i + 1;
    }
    out.append(bytes.substr(run));
}

} // namespace qncomm::transfer
