#include "TelnetDecoder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qncomm {
namespace {

/// What a decoder tells.
class Heard final : public TelnetSink {
  public:
    void OnData(std::string_view bytes) override { data += bytes; }
    void OnOption(char /*verb*/, char /*option*/) override {}
    void OnSubnegotiation(std::string_view bytes) override { options.emplace_back(bytes); }

    std::string data;
    std::vector<std::string> options;
};

/// An option with so many bytes, and a letter behind it.
std::string OptionOf(std::size_t size) {
    return "\xff\xfa" + std::string(size, 'x') + "\xff\xf0z";
}

TEST(TelnetDecoder, TakesOptionsUpToTheLongestAndDropsLongerOnes) {
    constexpr std::size_t longest = TelnetDecoder::LongestSubnegotiation;
    Heard heard;
    TelnetDecoder decoder;
    decoder.Feed(OptionOf(longest), heard);
    decoder.Feed(OptionOf(longest + 1), heard);
    decoder.Feed(OptionOf(longest * 1000), heard);
    decoder.Feed(OptionOf(3), heard);
    ASSERT_EQ(heard.options.size(), 2U);
    EXPECT_EQ(heard.options[0], std::string(longest, 'x'));
    EXPECT_EQ(heard.options[1], "xxx") << "what follows a dropped one is heard";
    EXPECT_EQ(heard.data, "zzzz");
}

} // namespace
} // namespace qncomm
