#include "KermitCheck.h"

#include "Crc.h"
#include "KermitFrame.h"

#include <numeric>

namespace qncomm::transfer {

std::string KermitCheck(unsigned kind, std::string_view bytes) {
    if (kind == 3) {
        const unsigned crc = Crc16Low(0, bytes);
        return {kermit::ToChar(crc >> 12U), kermit::ToChar((crc >> 6U) & 0x3FU),
                kermit::ToChar(crc & 0x3FU)};
    }
    const unsigned sum =
        std::accumulate(bytes.begin(), bytes.end(), 0U, [](unsigned total, char c) {
            return total + static_cast<unsigned char>(c);
        });
    if (kind == 2) return {kermit::ToChar((sum >> 6U) & 0x3FU), kermit::ToChar(sum & 0x3FU)};
    return std::string(1, kermit::ToChar((sum + ((sum >> 6U) & 3U)) & 0x3FU));
}

std::string WriteKermitPacket(char type, unsigned sequence, std::string_view data, unsigned check) {
    std::string packet;
    packet.reserve(data.size() + 16);
    packet.push_back(kermit::Mark);
    const std::size_t length = data.size() + 2 + check;
    if (length <= kermit::LongestShort) {
        packet.append(
            {kermit::ToChar(static_cast<unsigned>(length)), kermit::ToChar(sequence), type});
    } else {
        const auto extended = static_cast<unsigned>(data.size() + check);
        packet.append({kermit::ToChar(0), kermit::ToChar(sequence), type,
                       kermit::ToChar(extended / 95), kermit::ToChar(extended % 95)});
        packet += KermitCheck(1, std::string_view(packet).substr(1));
    }
    packet += data;
    packet += KermitCheck(check, std::string_view(packet).substr(1));
    packet.push_back(kermit::EndOfLine);
    return packet;
}

} // namespace qncomm::transfer
