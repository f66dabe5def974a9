#include "TransferRig.h"
#include "transfer/ZModemReceiver.h"
#include "transfer/ZModemSender.h"

#include <gtest/gtest.h>

#include <iostream>

namespace qncomm::transfer::testing {

namespace {

using namespace std::chrono_literals;

LineSettings Paced(double rate = 11520) {
    LineSettings settings;
    settings.rate = rate;
    settings.latency = 1ms;
    return settings;
}

struct ZPair {
    ZPair(std::vector<MemoryFile> files, const LineSettings& line, std::uint64_t seed = 1,
          ZModemSenderOptions sending = {}, ZModemReceiverOptions receiving = {})
        : sender(std::move(sending)),
          receiver(receiving),
          source(std::move(files)),
          rig(sender, source, receiver, sink, line, seed) {}
    ZModemSender sender;
    ZModemReceiver receiver;
    MemorySource source;
    MemorySink sink;
    TransferRig rig;
};

void ExpectWhole(const ZPair& pair, const std::string& content) {
    EXPECT_EQ(pair.sender.Outcome(), Outcome::Success) << pair.sender.Reason();
    EXPECT_EQ(pair.receiver.Outcome(), Outcome::Success) << pair.receiver.Reason();
    ASSERT_EQ(pair.sink.Whole().size(), 1U);
    EXPECT_TRUE(pair.sink.Whole()[0].content == content);
    EXPECT_FALSE(pair.sink.bGap);
}

double Share(const ZPair& pair, std::size_t size, double rate) {
    return static_cast<double>(size) / rate
           / (static_cast<double>(pair.rig.Elapsed().count()) * 1e-6);
}

} // namespace

TEST(ZModemPair, CarriesARandomFileAtTheLinesRate) {
    const std::string content = RandomBytes(1 << 20, 7);
    ZPair pair({{"random.bin", content}}, Paced());
    ASSERT_TRUE(pair.rig.Run(600s));
    ExpectWhole(pair, content);
    EXPECT_GT(Share(pair, content.size(), 11520), 0.96);
    std::cout << Share(pair, content.size(), 11520) << " farewell " << pair.rig.Farewell().count()
              << "\n";
}

TEST(ZModemPair, RepairsEveryDamage) {
    for (const double rate : {1e-4, 1e-3}) {
        for (std::uint64_t seed = 1; seed <= 4; ++seed) {
            const std::string content = RandomBytes(1 << 18, seed);
            auto line = Paced();
            line.faults.flip = rate;
            ZPair pair({{"random.bin", content}}, line, seed);
            ASSERT_TRUE(pair.rig.Run(900s));
            ExpectWhole(pair, content);
            std::cout << rate << " " << Share(pair, content.size(), 11520) << " repairs "
                      << pair.receiver.Progress().repairs << " " << pair.sender.Progress().repairs
                      << " farewell " << pair.rig.Farewell().count() << "\n";
        }
    }
}

} // namespace qncomm::transfer::testing
