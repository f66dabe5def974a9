// What can be wrong with a machine, staged by a folder, and what the doctor says.
#include "Stage.h"
#include "common/MemorySettings.h"
#include "diagnosis/LineExamination.h"
#include "platform/SystemFiles.h"
#include "serial_testing/ScriptedChannel.h"
#include "testing/core/StagedMachine.h"

#include <gtest/gtest.h>

#include <array>
#include <sys/stat.h>
#include <utility>

namespace qncomm::testing {
namespace {

struct MachineCondition {
    const char* name;
    const char* verdict;
    IoStatus opening; ///< how the port opens there
    void (*stage)(StagedMachine& machine);
};

const std::array MachineConditions{
    MachineCondition{"NotInTheGroup", "not-in-group", IoStatus::Denied, [](StagedMachine&) {}},
    MachineCondition{"AddedToTheGroupAfterLogin", "not-yet-in-group", IoStatus::Denied,
                     [](StagedMachine& machine) { machine.Group("anna"); }},
    MachineCondition{
        "ForItsOwnerAlone", "denied", IoStatus::Denied,
        [](StagedMachine& machine) { ::chmod(machine.Real(StagedMachine::Path).c_str(), 0600); }},
    MachineCondition{"Unplugged", "unplugged", IoStatus::Missing,
                     [](StagedMachine& machine) {
                         machine.Unplug();
                         machine.Put(
                             "dev/kmsg",
                             "6,9,9,-;ftdi_sio ttyUSB0: converter now disconnected from ttyUSB0\n");
                     }},
    MachineCondition{"NeverPluggedIn", "missing", IoStatus::Missing,
                     [](StagedMachine& machine) { machine.Unplug(); }},
    MachineCondition{"TakenForABrailleDisplay", "taken-adapter", IoStatus::Missing,
                     [](StagedMachine& machine) {
                         machine.Unplug();
                         machine.Process(77, "brltty");
                     }},
    MachineCondition{"ALoginAsksOnIt", "login", IoStatus::Busy,
                     [](StagedMachine& machine) {
                         machine.Process(77, "agetty", std::string("agetty\0ttyUSB0\0", 15));
                         machine.Opens(77);
                     }},
    MachineCondition{"LockedByAProgram", "busy", IoStatus::Busy,
                     [](StagedMachine& machine) {
                         machine.Process(77, "minicom");
                         machine.Opens(77);
                         machine.Locks(77);
                     }},
    MachineCondition{"ReadByAProgram", "shared", IoStatus::Done,
                     [](StagedMachine& machine) {
                         machine.Process(77, "cat");
                         machine.Opens(77);
                     }},
    MachineCondition{"ModemsAreLookedFor", "grabbed", IoStatus::Done,
                     [](StagedMachine& machine) { machine.Process(77, "ModemManager"); }},
};

/// What is found on the line behind the staged device, on a driven clock.
LineFacts LineBehind(ChannelFactory factory) {
    ManualReactor reactor;
    RecordingDesktop desktop;
    PortBindings bindings;
    EXPECT_EQ(bindings.Give(1, StagedMachine::Path), "");
    return LineExamination({.reactor = reactor,
                            .desktop = desktop,
                            .files = SystemFiles(),
                            .bindings = bindings,
                            .number = 1,
                            .settings = std::make_shared<MemorySettings>(),
                            .as = {},
                            .factory = std::move(factory)})
        .Run();
}

class StagedMachineConditions : public ::testing::TestWithParam<MachineCondition> {};

TEST_P(StagedMachineConditions, AreNamedRight) {
    StagedMachine machine;
    GetParam().stage(machine);
    ScriptedLine line;
    line.openResult = {GetParam().opening, 0, "as the stage has it"};
    const Examined examined{.port = StagedMachine::Path,
                            .machine = machine.Look(),
                            .line = LineBehind(ScriptedChannels(line))};
    EXPECT_EQ(VerdictOf(examined).name, GetParam().verdict) << Told(examined);
}

TEST(LastMoments, ALineThatHasJustBegunIsHeardToItsEnd) {
    const Device asks{.talk = "\r\nArticle? ", .everyMs = 990};
    const Examined examined{
        .port = StagedMachine::Path, .machine = {}, .line = LineBehind(ChannelsTo(asks))};
    EXPECT_EQ(VerdictOf(examined).name, "asking") << Told(examined);
}

INSTANTIATE_TEST_SUITE_P(Machine, StagedMachineConditions, ::testing::ValuesIn(MachineConditions),
                         [](const auto& each) { return std::string(each.param.name); });

} // namespace
} // namespace qncomm::testing
