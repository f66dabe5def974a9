// Each engine against other people's programs over a line that goes wrong. Many runs are under way
// at a time, because most of each is waiting for the program's own time-outs.

#include "FaultCampaign.h"
#include "PeerRig.h"
#include "PeerRun.h"
#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"
#include "transfer/ZModemReceiver.h"
#include "transfer/ZModemSender.h"

#include <gtest/gtest.h>

#include <chrono>
#include <list>
#include <memory>
#include <poll.h>

namespace qncomm::testing {

using namespace transfer;

namespace {

using namespace std::chrono_literals;

constexpr std::size_t AtATime = 24;
// What a program may take with all its repeats before it is killed: the engine's patience then
// costs no more time.
constexpr Time Longest = 30s;
constexpr Time Hangs = 10s; // behind that
constexpr Time LongestSilence = 60s;
// How long the program may take to end behind the engine, before its file is looked at.
constexpr Time Farewell = 2s;
const std::string FileName = "file.bin";

enum class Mishap {
    Flip,
    Drop,
    Repeat,
    Insert,
    Stall,
    Mixed,
    Cut,
    Killed,
    DiskFull,
};
constexpr unsigned Mishaps = 9;

// One program with one engine against it.
struct Opponent {
    const char* name;
    std::vector<std::string> command; // NAME stands for the file
    std::unique_ptr<TransferEngine> (*engine)();
    bool sends;              // the engine
    std::size_t size = 4000; // of the file, at least; twice that at most
};

constexpr Time Patience = 12s; // the programs repeat after a second

template <class Engine>
std::unique_ptr<TransferEngine> Make() {
    return std::make_unique<Engine>();
}

template <class Engine, bool bReliable = false>
std::unique_ptr<TransferEngine> MakeKermit() {
    KermitOptions options;
    options.reliable = bReliable;
    options.patience = Patience;
    return std::make_unique<Engine>(options);
}

std::vector<std::string> CKermit(const std::string& settings, const std::string& action) {
    return {"kermit", "-Y", "-q", "-C",
            "set file type binary, set transfer mode manual, set file names literal, "
            "set file collision overwrite, set block-check 3, set delay 0, "
            "set send timeout 1 fixed, set receive timeout 1 fixed, set receive packet-length 500, "
            "set window 8, "
                + settings + action + ", exit"};
}

const std::vector<Opponent>& Opponents() {
    static const std::vector<Opponent> all = {
        {"rz", {"rz", "-b", "-q", "-y", "-t", "10"}, &Make<ZModemSender>, true, 20000},
        {"sz", {"sz", "-b", "-q", "-t", "10", "NAME"}, &Make<ZModemReceiver>, false, 20000},
        {"kermit", CKermit("", "receive"), &MakeKermit<KermitSender>, true},
        {"kermit", CKermit("", "send NAME"), &MakeKermit<KermitReceiver>, false},
        {"kermit that streams", CKermit("set reliable on, ", "receive"),
         &MakeKermit<KermitSender, true>, true},
        {"kermit that streams", CKermit("set reliable on, ", "send NAME"),
         &MakeKermit<KermitReceiver, true>, false},
        {"gkermit",
         {"gkermit", "-q", "-i", "-P", "-w", "-b", "1", "-r"},
         &MakeKermit<KermitSender>,
         true},
        {"gkermit",
         {"gkermit", "-q", "-i", "-P", "-b", "1", "-s", "NAME"},
         &MakeKermit<KermitReceiver>,
         false},
        {"gkermit that streams",
         {"gkermit", "-q", "-i", "-P", "-w", "-b", "1", "-r"},
         &MakeKermit<KermitSender, true>,
         true},
        {"gkermit that streams",
         {"gkermit", "-q", "-i", "-P", "-b", "1", "-s", "NAME"},
         &MakeKermit<KermitReceiver, true>,
         false},
    };
    return all;
}

LineSettings LineFor(Mishap mishap, std::uint64_t seed) {
    LineSettings line;
    line.rate = 200000;
    LineFaults& faults = line.faults;
    const double rate = seed / (Opponents().size() * Mishaps) % 2 == 0 ? 1e-3 : 2e-4;
    faults.stallFor = 300ms;
    switch (mishap) {
    case Mishap::Flip:
        faults.flip = rate;
        break;
    case Mishap::Drop:
        faults.drop = rate;
        break;
    case Mishap::Repeat:
        faults.repeat = rate;
        break;
    case Mishap::Insert:
        faults.insert = rate;
        break;
    case Mishap::Stall:
        faults.stall = 1e-4;
        break;
    case Mishap::Mixed:
        faults = {rate / 4, rate / 4, rate / 4, rate / 4, 2e-5, 300ms, 0, ~0ULL};
        break;
    default:
        break; // goes wrong in another way
    }
    return line;
}

std::vector<std::string> CommandFor(const Opponent& opponent, bool bDiskFull) {
    std::vector<std::string> command;
    // A limit of file size is a disk that is full for this program alone.
    if (bDiskFull) command = {"sh", "-c", "trap '' XFSZ; ulimit -f 4; exec \"$@\"", "sh"};
    for (const std::string& word : opponent.command) {
        std::string filled = word;
        if (const auto at = filled.find("NAME"); at != std::string::npos)
            filled.replace(at, 4, FileName);
        command.push_back(filled);
    }
    return command;
}

Time MachineTime() {
    return std::chrono::duration_cast<Time>(std::chrono::steady_clock::now().time_since_epoch());
}

// One transfer that goes wrong in one way.
class Match {
  public:
    explicit Match(std::uint64_t seed)
        : mSeed(seed),
          mOpponent(Opponents()[seed % Opponents().size()]),
          mMishap(static_cast<Mishap>(seed / Opponents().size() % Mishaps)),
          mContent(RandomBytes(mOpponent.size + seed * 977 % mOpponent.size, seed)),
          mSource({{FileName, mContent}}),
          mEngine(mOpponent.engine()),
          mStart(MachineTime()) {
        if (!mOpponent.sends) mFolder.Write(FileName, mContent);
        if (mMishap == Mishap::DiskFull && !mOpponent.sends) mSink.failWriteAt = 2048;
        mPeer = std::make_unique<PeerProcess>(
            CommandFor(mOpponent, mMishap == Mishap::DiskFull && mOpponent.sends), mFolder.Path());
        mRun = std::make_unique<PeerRun>(*mEngine, mOpponent.sends ? &mSource : nullptr,
                                         mOpponent.sends ? nullptr : &mSink, *mPeer,
                                         LineFor(mMishap, seed), seed);
    }

    // False when it is decided.
    bool Step() {
        const Time now = MachineTime();
        mRun->Step(now);
        const bool ends = mMishap == Mishap::Killed || mMishap == Mishap::Cut;
        if (ends && mRun->Carried() > 200 + mSeed * 7919 % mOpponent.size) mPeer->Kill();
        if (now - mStart > Longest) mPeer->Kill();
        if (!mRun->IsOver()) return now - mStart < Longest + Hangs;
        if (mOverAt == Time{0}) mOverAt = now;
        return !mPeer->HasEnded() && now - mOverAt < Farewell;
    }

    // What went wrong, counted, and what may not have.
    std::uint64_t Judge() {
        const std::string which = Name();
        EXPECT_TRUE(mRun->IsOver()) << which << " hangs";
        EXPECT_LE(mRun->Silence(), LongestSilence + Farewell) << which;
        EXPECT_FALSE(mSink.gap) << which;
        for (const auto& whole : mSink.Whole())
            EXPECT_TRUE(whole.content == mContent) << which << " is damaged and was not noticed";
        const bool success = mEngine->Outcome() == Outcome::Success;
        EXPECT_FALSE(success && mMishap == Mishap::DiskFull) << which;
        const bool there =
            mOpponent.sends ? mFolder.Read(FileName) == mContent : mSink.Whole().size() == 1;
        EXPECT_TRUE(there || !success) << which << " is called whole and is not";
        return mRun->Faults() + (mMishap >= Mishap::Cut ? 1 : 0);
    }

    // What to wait for.
    [[nodiscard]] pollfd Ready() const {
        return {mPeer->HasEnded() ? -1 : mPeer->Descriptor(), POLLIN, 0};
    }
    [[nodiscard]] bool Succeeded() const { return mEngine->Outcome() == Outcome::Success; }
    [[nodiscard]] std::string Name() const {
        return "seed " + std::to_string(mSeed) + ", " + mOpponent.name + ", mishap "
               + std::to_string(static_cast<int>(mMishap)) + ", "
               + (mOpponent.sends ? "sending" : "receiving") + ", " + mEngine->Reason();
    }

  private:
    std::uint64_t mSeed;
    const Opponent& mOpponent;
    Mishap mMishap;
    std::string mContent;
    ScratchFolder mFolder;
    MemorySource mSource;
    MemorySink mSink;
    std::unique_ptr<TransferEngine> mEngine;
    std::unique_ptr<PeerProcess> mPeer;
    std::unique_ptr<PeerRun> mRun;
    Time mStart;
    Time mOverAt{0};
};

// A paced line moves on by itself, so this is short.
void WaitForAny(const std::list<Match>& matches) {
    std::vector<pollfd> ready;
    for (const Match& match : matches)
        ready.push_back(match.Ready());
    poll(ready.data(), ready.size(), 1);
}

} // namespace

TEST(PeerFaults, NothingIsEverWrongAndNothingHangs) {
    if (!PeersAreInstalled({"rz", "sz", "kermit", "gkermit"})) return;
    const std::uint64_t wanted = FaultsWanted() / FaultsForOneOfAPeer;
    const std::uint64_t first = FirstSeed();
    const std::uint64_t leastSeed = first + Opponents().size() * Mishaps;
    std::uint64_t faults = 0;
    std::uint64_t seed = first;
    std::uint64_t good = 0;
    std::list<Match> matches;
    while (!matches.empty() || faults < wanted || seed < leastSeed) {
        while (matches.size() < AtATime && (faults < wanted || seed < leastSeed))
            matches.emplace_back(seed++);
        for (auto match = matches.begin(); match != matches.end();) {
            if (match->Step()) {
                ++match;
                continue;
            }
            faults += match->Judge();
            good += match->Succeeded() ? 1 : 0;
            match = matches.erase(match);
        }
        WaitForAny(matches);
    }
    EXPECT_GT(good, (seed - first) / 4) << "hardly anything gets through";
    std::cout << faults << " faults in " << seed - first << " transfers, " << good << " arrived\n";
}

} // namespace qncomm::testing
