// The command layer's suite over a real pseudo-terminal and a real socket, on the machine's clock.

#include "platform/PollLoop.h"
#include "testing/stack/LayerFixture.h"

namespace qncomm::testing {
namespace {

std::unique_ptr<Reactor> MachinesClock() {
    return std::make_unique<PollLoop>();
}

INSTANTIATE_TEST_SUITE_P(Line, Layer,
                         ::testing::Values(LayerLine{"Pty", PrinterOnPty, MachinesClock},
                                           LayerLine{"Tcp", PrinterOnTcp, MachinesClock}),
                         NameOfLine);

} // namespace
} // namespace qncomm::testing
