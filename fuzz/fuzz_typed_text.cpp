// Typed text and text that is shown: however it is cut, what is typed becomes the same bytes, and
// whatever the printer sent, nothing that steers a terminal is left in what is shown.

#include "Choices.h"
#include "console/Charset.h"

#include <algorithm>
#include <string>

namespace qncomm::fuzz {
namespace {

std::string Typed(std::string_view text, std::size_t piece) {
    TypedText typed;
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); at += piece)
        bytes += typed.Feed(text.substr(at, piece));
    return bytes;
}

void Check(Choices choices) {
    const std::size_t piece = 1U + choices.Next() % 7U;
    const std::string_view text = choices.Rest();
    Promise(Typed(text, piece) == Typed(text, text.size() + 1));

    const std::string shown = WithoutControls(DisplayText(text));
    Promise(std::ranges::none_of(shown, [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 || byte == 0x7F;
    }));
    Promise(shown.find("\xE2\x80\xAE") == std::string::npos);
    Promise(DisplayText(shown) == shown); // it is UTF-8
    Promise(WithoutControls(shown) == shown);
}

} // namespace
} // namespace qncomm::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    qncomm::fuzz::Check({data, size});
    return 0;
}
