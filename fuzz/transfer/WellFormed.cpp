#include "EngineFuzz.h"
#include "KermitCheck.h"
#include "ZModemWriter.h"

#include <algorithm>

namespace qncomm::fuzz {

namespace {

std::uint8_t At(std::string_view bytes, std::size_t i) {
    return i < bytes.size() ? static_cast<std::uint8_t>(bytes[i]) : std::uint8_t{0};
}

} // namespace

// Type, form, position or flags, then the content of a subpacket when there is any.
std::string WellFormedZModem(std::string_view choices) {
    const auto type = static_cast<std::uint8_t>(At(choices, 0) % 20);
    const std::uint8_t form = At(choices, 1);
    transfer::ZModemHeader header;
    header.type = type;
    header.bytes = {At(choices, 2), At(choices, 3), 0, At(choices, 4)};
    transfer::ZModemWriter writer;
    writer.UseCrc32(form % 4 == 1);
    std::string out;
    if (form % 4 >= 2) {
        writer.Hex(out, header);
    } else {
        writer.Binary(out, header);
    }
    if (choices.size() > 5) {
        writer.Subpacket(out, choices.substr(5),
                         static_cast<char>(transfer::zm::EndFrame + form / 4 % 4));
    }
    return out;
}

// Type, sequence, kind of check, then the data.
std::string WellFormedKermit(std::string_view choices) {
    static constexpr std::string_view Types = "SIFADZBYNEDDYY";
    const char type = Types[At(choices, 0) % Types.size()];
    const unsigned check = 1U + At(choices, 2) % 3U;
    const std::string_view data = choices.size() > 3 ? choices.substr(3) : std::string_view();
    return transfer::WriteKermitPacket(type, At(choices, 1) % 64U, data, check);
}

} // namespace qncomm::fuzz
