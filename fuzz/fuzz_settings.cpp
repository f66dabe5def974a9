// Any text as settings: what reads is written back as it was, and what is set reads back. The first
// bytes are a value and choose its key; the text follows.

#include "Choices.h"
#include "common/SettingsDocument.h"

#include <string>

namespace qncomm::fuzz {
namespace {

/// A name without the characters that end one.
std::string NameOf(std::uint8_t choice) {
    return std::string(1U + choice % 3U, static_cast<char>('A' + choice % 26U));
}

void Check(Choices choices) {
    const std::string section = NameOf(choices.Next());
    const std::string key = NameOf(choices.Next());
    const std::string_view value = choices.Text();
    const std::string_view text = choices.Rest();

    auto document = SettingsDocument::Parse(text);
    Promise(document.has_value() == (text.find('\0') == std::string_view::npos));
    if (!document) return;
    const std::string written = document->Text();
    Promise(text.empty() || written == text || written == std::string(text) + "\n"
            || written == std::string(text) + "\r\n");

    document->SetValue(section, key, value);
    const auto again = SettingsDocument::Parse(document->Text());
    Promise(again && again->Value(section, key) == value);
    Promise(document->Value(section, key) == value);
    Promise(again->Text() == document->Text());
}

} // namespace
} // namespace qncomm::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    qncomm::fuzz::Check({data, size});
    return 0;
}
