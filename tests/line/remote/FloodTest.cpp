// Servers that never stop talking: an opening takes its stated time and not more, keeps nothing of
// it, and hears a cancel.
#include "Rfc2217Channel.h"
#include "common/QNError.h"
#include "platform/Interrupt.h"
#include "platform/PollLoop.h"
#include "testing/line/FloodingServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <unistd.h>

namespace qncomm::testing {
namespace {

using ::testing::HasSubstr;

constexpr LineSettings AnySettings{57600, 'n', 8, 2, false, false};

/// The memory that this process has now, in KiB.
long ResidentKb() {
    long total = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * (::sysconf(_SC_PAGESIZE) / 1024);
}

struct Flood {
    const char* name;
    std::string says;
    const char* why; ///< what the opening fails with
};

std::ostream& operator<<(std::ostream& out, const Flood& flood) {
    return out << flood.name;
}

class FloodedOpening : public ::testing::TestWithParam<Flood> {};

TEST_P(FloodedOpening, EndsInItsTimeAndKeepsNothingOfTheFlood) {
    const FloodingServer server(GetParam().says);
    PollLoop loop;
    Rfc2217Channel channel(loop, "127.0.0.1", server.Service());
    const std::int64_t begun = loop.NowMs();
    const long before = ResidentKb();
    const IoResult result = channel.Open(AnySettings);
    EXPECT_THAT(result.text, HasSubstr(GetParam().why));
    EXPECT_LE(loop.NowMs() - begun, 4000);
    EXPECT_LE(ResidentKb() - before, 8192);
}

TEST_P(FloodedOpening, HearsACancel) {
    Interrupt interrupt; // before the server's thread, which is to hear none
    PollLoop loop(&interrupt, 50);
    const FloodingServer server(GetParam().says);
    Rfc2217Channel channel(loop, "127.0.0.1", server.Service());
    ::raise(SIGINT);
    const std::int64_t begun = loop.NowMs();
    EXPECT_THROW(channel.Open(AnySettings), OperationCancelled);
    EXPECT_LE(loop.NowMs() - begun, 1000);
}

INSTANTIATE_TEST_SUITE_P(By, FloodedOpening,
                         ::testing::Values(Flood{"Data", "PRICES\r\n", "does not speak RFC 2217"},
                                           Flood{"NoOperations", "\xff\xf1",
                                                 "does not speak RFC 2217"},
                                           Flood{"Subnegotiations", "\xff\xfa\x2c\x6b\x20\xff\xf0",
                                                 "does not speak RFC 2217"}),
                         [](const auto& flood) { return flood.param.name; });

TEST(FloodOfOptions, EndsTheOpeningInItsTime) {
    const FloodingServer server("\xff\xfd\x05"); // DO something, a million times a second
    PollLoop loop;
    Rfc2217Channel channel(loop, "127.0.0.1", server.Service());
    const std::int64_t begun = loop.NowMs();
    const long before = ResidentKb();
    EXPECT_FALSE(channel.Open(AnySettings).Ok());
    EXPECT_LE(loop.NowMs() - begun, 4000);
    EXPECT_LE(ResidentKb() - before, 8192);
}

} // namespace
} // namespace qncomm::testing
