// A whole control on a driven clock: any members with any arguments, a line that is tampered with,
// and a host that cancels, raises, calls, takes down and destroys within whatever the control tells
// or asks it. The input is three texts with their lengths: the host's steps, what it does within
// them, and what happens on the line.

#include "HostileHost.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using qncomm::fuzz::Choices;
    Choices all(data, size);
    const auto part = [](std::string_view bytes) {
        return Choices(static_cast<const std::uint8_t*>(static_cast<const void*>(bytes.data())),
                       bytes.size());
    };
    const Choices steps = part(all.Text());
    const Choices moments = part(all.Text());
    qncomm::fuzz::HostileHost(steps, moments, part(all.Rest())).Run();
    return 0;
}
