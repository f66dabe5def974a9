#include "transfer/KermitSender.h"
#include "KermitCheck.h"
#include "KermitReader.h"
#include "testing/transfer/MemoryFiles.h"

#include <gtest/gtest.h>

// The sender alone, answered packet by packet.
namespace qncomm::testing {

using namespace transfer;

namespace {

using namespace std::chrono_literals;

class AnsweredSender {
  public:
    explicit AnsweredSender(std::string content, KermitOptions options = {})
        : mSource({{"a.bin", std::move(content)}}), mSender(options) {
        mSender.Start(mNow);
    }

    // The types and sequences of what it says now, such as "S0".
    std::vector<std::string> Said() {
        std::vector<std::string> said;
        for (;;) {
            std::string_view output = ServedOutput(mSender, &mSource, nullptr, mNow);
            if (output.empty()) return said;
            const std::size_t size = output.size();
            while (mReader.Next(output) == KermitReader::Item::Packet) {
                const auto& packet = mReader.Packet();
                said.push_back(packet.type + std::to_string(packet.sequence));
            }
            mSender.Sent(size, mNow);
        }
    }

    std::vector<std::string> Hear(char type, unsigned sequence, std::string_view data = {}) {
        mNow += 100ms;
        mSender.Receive(WriteKermitPacket(type, sequence, data, 1), mNow);
        return Said();
    }

    // Up to the first data packets, which are returned.
    std::vector<std::string> Open() {
        Said();
        Hear('Y', 0, "~* @-#N1 $("); // long packets no, windows of 8
        return Hear('Y', 1);
    }

    TransferEngine& Engine() { return mSender; }

  private:
    Time mNow{1000s};
    MemorySource mSource;
    KermitSender mSender;
    KermitReader mReader;
};

} // namespace

TEST(KermitSender, WantingThePacketBehindTheLastOneSaysNothingOfThoseBefore) {
    AnsweredSender sender(RandomBytes(250, 2));
    const auto data = sender.Open();
    ASSERT_GE(data.size(), 3U);
    EXPECT_EQ(data[0], "D2");
    const auto count = static_cast<unsigned>(data.size());
    for (unsigned i = 1; i < count; ++i)
        sender.Hear('Y', 2 + i);
    for (int again = 0; again < 3; ++again)
        EXPECT_TRUE(sender.Hear('N', 2 + count).empty()) << "D2 was never acknowledged";
    EXPECT_EQ(sender.Hear('N', 2), std::vector<std::string>{"D2"});
    EXPECT_EQ(sender.Hear('Y', 2), std::vector<std::string>{"Z" + std::to_string(2 + count)});
}

TEST(KermitSender, WantingThePacketBehindTheOnlyOneSaysThatItHasCome) {
    AnsweredSender sender("x");
    EXPECT_EQ(sender.Open(), std::vector<std::string>{"D2"});
    EXPECT_EQ(sender.Hear('N', 3), std::vector<std::string>{"Z3"});
    EXPECT_EQ(sender.Hear('N', 4), std::vector<std::string>{"B4"});
    sender.Hear('Y', 4);
    EXPECT_EQ(sender.Engine().Outcome(), Outcome::Success);
}

} // namespace qncomm::testing
