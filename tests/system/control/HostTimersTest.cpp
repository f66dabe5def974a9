// A host that ends the control, or takes its line away, from a timer of its own while a member
// waits: the member ends at once, wherever it waits and for whom.

#include "LongOperations.h"

#include "link/clsDataLink.h"

namespace qncomm::testing {
namespace {

/// What a host's timer does, and how soon the member that waits must have ended then.
struct HostsAct {
    const char* name;
    void (*act)(AssemblyRig& rig);
    std::int32_t withinMs;
};

constexpr HostsAct Acts[] = {
    {"TearDown", [](AssemblyRig& rig) { rig.Control().TearDown(); }, 200},
    {"Destruction", [](AssemblyRig& rig) { rig.mAssembly.reset(); }, 200},
    // The member tells of it in its own way: a search goes on with the next settings.
    {"AClosedPort", [](AssemblyRig& rig) { rig.Control().Link().ReleasePort(true, true); }, 60'000},
};

/// Those that wait for somebody who never comes, beside all that take their time.
std::vector<LongOperation> WaitingMembers() {
    const auto shown = [](AssemblyRig& rig) { rig.Show().DoAutoconnect(); };
    const auto alone = [](AssemblyRig& rig) {
        rig.Assemble("sim:R7G?lost=1"); // not a byte comes through
        rig.mAssembly->OpenPort();
    };
    const auto nothing = [](AssemblyRig&) { return std::string(); };
    std::vector<LongOperation> members = LongOperations();
    // These take no time: they open and close.
    std::erase_if(members, [](const LongOperation& member) {
        return member.name == std::string_view("Show") || member.name == std::string_view("Hide");
    });
    members.push_back({"BinaryUploadToNobody", alone,
                       [](AssemblyRig& rig, QNComm& control) {
                           control.BinaryUpload(rig.mFolder.Write("DATA.BIN", "data"));
                       },
                       nothing});
    members.push_back({"BinaryDownloadFromNobody", alone,
                       [](AssemblyRig& rig, QNComm& control) {
                           control.BinaryDownload(rig.mFolder.File("back"), BinaryKermit);
                       },
                       nothing});
    members.push_back({"ProgramStop", shown,
                       [](AssemblyRig&, QNComm& control) {
                           const auto held = control.Hold(); // as who uses the link directly does
                           control.Link().StopProgram();
                       },
                       nothing});
    members.push_back({"Break", shown,
                       [](AssemblyRig&, QNComm& control) {
                           const auto held = control.Hold();
                           control.Link().SendBreak(5000);
                       },
                       nothing});
    return members;
}

class HostTimers : public WithinEvents {
  protected:
    /// A control on a line that takes its time, ready for the member.
    void Prepare() {
        Assemble("sim:R7G?paced=on&answer=50&boot-ms=2000");
        GetParam().prepare(*this);
    }

    /// Runs the member with an act that is due that many ms after its beginning. How long the
    /// member has gone on after the act; nothing when it was over before.
    std::optional<std::int64_t> RunOnAfter(std::int32_t ms, const HostsAct& act) {
        std::optional<std::int64_t> acted;
        const auto timer = mReactor.StartTimer(ms, [&] {
            if (acted) return;
            acted = mReactor.NowMs();
            act.act(*this);
        });
        Run(-1, [] {});
        if (!acted) return std::nullopt;
        return mReactor.NowMs() - *acted;
    }

    std::int32_t DurationMs() {
        Prepare();
        const std::int64_t begun = mReactor.NowMs();
        Run(-1, [] {});
        return static_cast<std::int32_t>(mReactor.NowMs() - begun);
    }
};

TEST_P(HostTimers, EndTheMemberThatWaits) {
    const std::int32_t duration = DurationMs();
    int acted = 0;
    for (const HostsAct& act : Acts) {
        for (const int part : {5, 60}) {
            const std::int32_t at = std::max(1, duration * part / 100);
            SCOPED_TRACE(::testing::Message() << act.name << " after " << at << " ms");
            Prepare();
            const auto wentOn = RunOnAfter(at, act);
            if (!wentOn) continue;
            ++acted;
            EXPECT_LE(*wentOn, act.withinMs);
            mReactor.Pass(6000);
            Assemble("sim:R7G");
            ExpectUsable();
        }
    }
    EXPECT_GT(acted, 0) << "no timer ran while it waited " << duration << " ms: " << mRaised;
}

INSTANTIATE_TEST_SUITE_P(Of, HostTimers, ::testing::ValuesIn(WaitingMembers()),
                         [](const auto& operation) { return operation.param.name; });

} // namespace
} // namespace qncomm::testing
