// Files between the link and the virtual printer over a line that goes wrong, by seed and on a
// driven clock: whatever happens, the operation ends, what arrived is whole or absent, and the port
// is nobody's afterwards.

#include "testing/core/ScratchFolder.h"
#include "testing/stack/ManualReactor.h"
#include "testing/stack/Stack.h"

#include "common/QNError.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <set>

namespace qncomm::testing {
namespace {

struct Fault {
    const char* name;
    const char* option; // its number is added to it
};

int Setting(const char* name, int usual) {
    const char* set = std::getenv(name);
    return set != nullptr ? std::atoi(set) : usual;
}

// Transfers for each kind of fault: QN_FAULTS sets how many faults a campaign goes through, of
// which these are a few in each hundred, and so many that it can be told whether most arrive.
// QN_FIRST_SEED is the number of the first.
int Transfers() {
    return std::max(Setting("QN_FAULTS", 40'000) / 1000, 40);
}

int FirstSeed() {
    return Setting("QN_FIRST_SEED", 1);
}

std::string Content(int seed) {
    std::mt19937 source(static_cast<unsigned>(seed));
    std::string bytes(4000 + static_cast<std::size_t>(seed) * 313 % 8000, '\0');
    for (char& c : bytes)
        c = static_cast<char>(source());
    return bytes;
}

/// One file, there and back; what was raised on the way, 0 for nothing.
class Errand {
  public:
    Errand(const std::string& address, int seed)
        : mContent(Content(seed)), mStack(mReactor, address) {}

    int Upload() {
        const std::string path = mFolder.Write("sent.bin", mContent);
        return NumberOf([&] { mStack.mLink.KermitUpload(path, "c:DATA.BIN"); });
    }

    int Download() {
        return NumberOf(
            [&] { mStack.mLink.KermitDownload("c:DATA.BIN", mFolder.File("back.bin")); });
    }

    void ExpectNothingIsClaimed(const std::string& which) {
        EXPECT_EQ(mStack.mLink.UseCount(), 0) << which;
        EXPECT_FALSE(mStack.mSerial.PortOpen()) << which;
        EXPECT_EQ(mStack.mSerial.Tag(), "") << which;
    }
    /// An operation that is refused the port does nothing, so absent it may always be.
    void ExpectWholeOrAbsent(const std::string& which) const {
        EXPECT_TRUE(!mFolder.Has("back.bin") || mFolder.Read("back.bin") == mContent) << which;
    }
    bool IsBack() const { return mFolder.Has("back.bin"); }
    std::int64_t NowMs() { return mReactor.NowMs(); }

  private:
    template <class Operation>
    static int NumberOf(Operation operation) {
        try {
            operation();
        } catch (const QNError& error) {
            return error.Number();
        }
        return 0;
    }

    std::string mContent;
    ScratchFolder mFolder;
    ManualReactor mReactor;
    Stack mStack;
};

class LinkFaults : public ::testing::TestWithParam<Fault> {};

TEST_P(LinkFaults, EndWithAWholeFileOrNoneAndNothingClaimed) {
    const std::set<int> named = {0, 1000, 1007, 1008, 1022, 1023};
    int back = 0;
    for (int seed = FirstSeed(); seed < FirstSeed() + Transfers(); ++seed) {
        const std::string which = std::string(GetParam().name) + ", seed " + std::to_string(seed);
        Errand errand("sim:R7G?boot-ms=0&baud=9600&" + std::string(GetParam().option)
                          + ",seed=" + std::to_string(seed),
                      seed);
        const std::int64_t start = errand.NowMs();
        const int up = errand.Upload();
        errand.ExpectNothingIsClaimed(which + " up");
        EXPECT_TRUE(named.contains(up) || up > 60000) << up << ' ' << which;
        const int down = errand.Download();
        errand.ExpectNothingIsClaimed(which + " down");
        EXPECT_TRUE(named.contains(down) || down > 60000) << down << ' ' << which;
        errand.ExpectWholeOrAbsent(which);
        EXPECT_FALSE(down != 0 && errand.IsBack()) << which << ": a file and an error";
        EXPECT_LE(errand.NowMs() - start, 300'000) << which;
        back += errand.IsBack() ? 1 : 0;
    }
    EXPECT_GT(back, Transfers() / 4) << "hardly anything gets through";
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, LinkFaults,
    ::testing::Values(Fault{"Lost", "lost=0.0005"}, Fault{"ManyLost", "lost=0.003"},
                      Fault{"Doubled", "doubled=0.001"}, Fault{"Flipped", "flipped=0.0005"},
                      Fault{"ManyFlipped", "flipped=0.003"}, Fault{"Stall", "stall=0.0005:3000"}),
    [](const auto& kind) { return kind.param.name; });

/// The line is cut for good in one place after another, counted in bytes to the host.
TEST(LinkCut, EndsWithAnErrorAndNothingClaimed) {
    int raised = 0;
    for (int seed = FirstSeed(); seed < FirstSeed() + Transfers(); ++seed) {
        const std::string which = "seed " + std::to_string(seed);
        const int place = 100 + seed * 131 % 6000; // in nearly every file
        Errand errand("sim:R7G?boot-ms=0&cut=" + std::to_string(place), seed);
        const std::int64_t start = errand.NowMs();
        const int up = errand.Upload();
        errand.ExpectNothingIsClaimed(which + " up");
        const int down = errand.Download();
        errand.ExpectNothingIsClaimed(which + " down");
        errand.ExpectWholeOrAbsent(which);
        EXPECT_LE(errand.NowMs() - start, 300'000) << which;
        raised += up != 0 || down != 0 ? 1 : 0;
    }
    EXPECT_GT(raised, Transfers() / 2);
}

} // namespace
} // namespace qncomm::testing
