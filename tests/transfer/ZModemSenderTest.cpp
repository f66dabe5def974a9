#include "transfer/ZModemSender.h"
#include "ZModemWriter.h"
#include "testing/transfer/MemoryFiles.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>

namespace qncomm::testing {

using namespace transfer;
using namespace std::chrono_literals;

namespace {

/// A sender with a file, and what a test says to it as the receiver.
class Sending : public ::testing::Test {
  protected:
    Sending() { mSender.Start(mNow); }

    /// Says a header and takes what is answered.
    std::string Say(std::uint8_t type, std::uint32_t position) {
        std::string bytes;
        ZModemWriter().Hex(bytes, ZModemHeader::At(type, position));
        mSender.Receive(bytes, mNow);
        std::string said(ServedOutput(mSender, &mSource, nullptr, mNow));
        mSender.Sent(said.size(), mNow);
        return said;
    }

    ZModemSender mSender{{}};
    MemorySource mSource{{{"a.bin", "abc"}}};
    Time mNow = 1000s;
};

TEST_F(Sending, TellsTheSumOfAFileSixteenTimes) {
    constexpr int mostSums = 16;
    Say(zm::RInit, 0);
    for (int asked = 0; asked < mostSums; ++asked)
        EXPECT_NE(Say(zm::Crc, 3).find("B0dc2412435"), std::string::npos) << asked;
    EXPECT_EQ(mSender.Outcome(), Outcome::Running);
    Say(zm::Crc, 3);
    EXPECT_EQ(mSender.Outcome(), Outcome::Failed);
    EXPECT_EQ(mSender.Reason(), "the receiver asks for one sum after the other");
}

} // namespace
} // namespace qncomm::testing
