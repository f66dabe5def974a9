#include "EnginePair.h"
#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"

#include <gtest/gtest.h>

#include <iostream>

namespace qncomm::transfer::testing {

namespace {

using namespace std::chrono_literals;

using KPair = EnginePair<KermitSender, KermitReceiver, KermitOptions, KermitOptions>;

} // namespace

TEST(KermitPair, CarriesARandomFileAtTheLinesRate) {
    const std::string content = RandomBytes(1 << 20, 7);
    for (auto prefixing :
         {KermitPrefixing::All, KermitPrefixing::Cautious, KermitPrefixing::Least}) {
        for (auto latency : {1ms, 50ms}) {
            KermitOptions options;
            options.prefixing = prefixing;
            auto line = PacedLine();
            line.latency = latency;
            KPair pair({{"random.bin", content}}, line, 1, options);
            ASSERT_TRUE(pair.rig.Run(600s));
            EXPECT_TRUE(pair.Carried(content));
            std::cout << int(prefixing) << " " << latency.count() << " "
                      << pair.Share(content.size(), 11520) << " repairs "
                      << pair.sender.Progress().repairs << "\n";
        }
    }
}

TEST(KermitPair, RepairsEveryDamage) {
    for (const double rate : {1e-4, 1e-3}) {
        for (std::uint64_t seed = 1; seed <= 4; ++seed) {
            const std::string content = RandomBytes(1 << 18, seed);
            auto line = PacedLine();
            line.faults.flip = rate;
            KPair pair({{"random.bin", content}}, line, seed);
            ASSERT_TRUE(pair.rig.Run(900s));
            EXPECT_TRUE(pair.Carried(content))
                << pair.sender.Reason() << " / " << pair.receiver.Reason();
            std::cout << rate << " " << pair.Share(content.size(), 11520) << " repairs "
                      << pair.receiver.Progress().repairs << " " << pair.sender.Progress().repairs
                      << " farewell " << pair.rig.Farewell().count() << "\n";
        }
    }
}

} // namespace qncomm::transfer::testing
