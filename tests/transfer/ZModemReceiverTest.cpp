#include "transfer/ZModemReceiver.h"
#include "ZModemWriter.h"
#include "testing/transfer/MemoryFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>

namespace qncomm::testing {

using namespace transfer;
using namespace std::chrono_literals;

namespace {

/// A receiver with a file sink, and what a test says to it as the sender.
class Receiving : public ::testing::Test {
  protected:
    Receiving() { mReceiver.Start(mNow); }

    /// Says the bytes and takes what is answered.
    std::string Say(const std::string& bytes) {
        mReceiver.Receive(bytes, mNow);
        std::string said(ServedOutput(mReceiver, nullptr, &mSink, mNow));
        mReceiver.Sent(said.size(), mNow);
        return said;
    }
    std::string Hex(std::uint8_t type, std::uint32_t position) {
        std::string bytes;
        mWriter.Hex(bytes, ZModemHeader::At(type, position));
        return bytes;
    }
    std::string Binary(ZModemHeader header, std::string_view content, char end) {
        std::string bytes;
        mWriter.Binary(bytes, header);
        mWriter.Subpacket(bytes, content, end);
        return bytes;
    }
    /// A file of a name alone: how long it is the sender does not say.
    std::string File() {
        const std::string name("a.bin\0", 6);
        return Binary(ZModemHeader::WithFlags(zm::File, zm::ConvertResume), name, zm::EndWait);
    }
    /// A sink for which that many bytes are here already, whose sum nobody asks for.
    class Long final : public FileSink {
      public:
        OfferDecision Offer(const FileInfo& /*file*/) override {
            OfferDecision decision;
            decision.offset = here;
            return decision;
        }
        bool Write(std::uint64_t, std::string_view, std::string&) override { return true; }
        bool Close(bool, std::string&) override { return true; }
        std::uint64_t here = 0;
    };

    ZModemReceiver mReceiver;
    MemorySink mSink;
    ZModemWriter mWriter;
    Time mNow = 1s;
};

} // namespace

// The sender repeats its end sooner than the receiver counts the line as quiet.
TEST_F(Receiving, AHeaderBehindAPauseEndsASubpacketWhoseEndWasDamaged) {
    Say({});
    const std::string name("a.bin\0"
                           "100",
                           9);
    Say(Binary(ZModemHeader::WithFlags(zm::File, zm::ConvertBinary), name, zm::EndWait));
    mNow += 50ms;
    std::string data;
    mWriter.Binary(data, ZModemHeader::At(zm::Data, 0));
    Say(data + std::string(100, 'x'));
    mNow += 150ms;
    EXPECT_NE(Say(Hex(zm::Eof, 100)).find("B0900000000"), std::string::npos)
        << "it asks for what is missing";
}

TEST_F(Receiving, AsksForTheSumOfWhatIsHereAndAsksAgain) {
    mSink.resumeFrom = "abc";
    Say({});
    EXPECT_NE(Say(File()).find("B0d03000000"), std::string::npos);
    EXPECT_NE(Say(File()).find("B0d03000000"), std::string::npos) << "it was not heard";
    mNow += 11s;
    mReceiver.Tick(mNow);
    EXPECT_NE(Say({}).find("B0d03000000"), std::string::npos);
    constexpr std::uint32_t sumOfAbc = 0x352441C2;
    EXPECT_NE(Say(Hex(zm::Crc, sumOfAbc)).find("B0903000000"), std::string::npos)
        << "it goes on behind what is here";
}

TEST_F(Receiving, BeginsAnewWhenTheSenderTellsNoSum) {
    mSink.resumeFrom = "abc";
    Say({});
    Say(File());
    std::string said;
    for (int tries = 0; tries < 3; ++tries) {
        mNow += 11s;
        mReceiver.Tick(mNow);
        said = Say({});
    }
    EXPECT_NE(said.find("B0900000000"), std::string::npos) << said;
    EXPECT_EQ(mReceiver.Outcome(), Outcome::Running);
}

TEST_F(Receiving, RefusesToGoOnWhereNoHeaderReaches) {
    Long sink;
    for (const std::uint64_t here : {std::uint64_t{0xFFFFFFFF}, std::uint64_t{0x100000000}}) {
        ZModemReceiver receiver;
        sink.here = here;
        receiver.Start(mNow);
        receiver.Receive(File(), mNow);
        static_cast<void>(ServedOutput(receiver, nullptr, &sink, mNow));
        EXPECT_EQ(receiver.Outcome() == Outcome::Failed, here > 0xFFFFFFFFU) << here;
        EXPECT_EQ(receiver.Reason(), here > 0xFFFFFFFFU ? "the file is too long for ZModem" : "");
    }
}

TEST_F(Receiving, KeepsNoMoreOfAnAttentionThanTheProtocolAllows) {
    Say({});
    Say(Binary(ZModemHeader::WithFlags(zm::SInit, 0), std::string(1000, 'A'), zm::EndWait));
    const std::string said = Say(File());
    EXPECT_EQ(std::ranges::count(said, 'A'), 31);
}

TEST_F(Receiving, EndsWhenTheLineTakesNothingOfItsAnswers) {
    const std::string question = Hex(zm::FreeCnt, 0);
    for (int n = 0; n < 100'000 && mReceiver.Outcome() == Outcome::Running; ++n)
        mReceiver.Receive(question, mNow);
    EXPECT_EQ(mReceiver.Outcome(), Outcome::Failed);
    EXPECT_EQ(mReceiver.Reason(), "the line takes nothing of what is answered");
    EXPECT_LT(mReceiver.Output(mNow).size(), 100U);
}

} // namespace qncomm::testing
