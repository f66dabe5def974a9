// Whatever a server sends: the client survives it, answers no more than it was asked, and hears the
// same in whatever pieces it comes.
#include "ComPortClient.h"

#include <cstdint>
#include <cstdlib>

namespace {

struct Heard {
    std::string data;
    std::string output;
    std::string state;
};

void Require(bool holds) {
    if (!holds) std::abort();
}

Heard Hear(std::string_view talk, std::size_t cut) {
    qncomm::ComPortClient client;
    client.Offer();
    client.Configure({57600, 'm', 7, 2, false, true});
    client.PurgeReceived();
    client.Sent(client.Output().size());
    Heard heard;
    client.Receive(talk.substr(0, cut), heard.data);
    client.Receive(talk.substr(cut), heard.data);
    heard.output = client.Output();
    const qncomm::LineErrors errors = client.TakeLineErrors();
    heard.state = std::to_string(client.Agreed()) + std::to_string(client.Settled())
                  + std::to_string(client.Purging()) + std::to_string(client.Suspended())
                  + std::to_string(client.Dsr().value_or(true)) + std::to_string(errors.frame)
                  + std::to_string(errors.overrun) + std::to_string(errors.parity)
                  + client.Unanswered() + client.Refusal().text;
    return heard;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size < 1) return 0;
    const std::string all(bytes + 1, bytes + size);
    const std::string_view talk = all;
    const Heard whole = Hear(talk, talk.size());
    Require(whole.data.size() <= talk.size());
    Require(whole.output.size() <= talk.size());
    const Heard cut = Hear(talk, bytes[0] * talk.size() / 256);
    Require(whole.data == cut.data);
    Require(whole.output == cut.output);
    Require(whole.state == cut.state);
    return 0;
}
