// A folder that stands for a machine's root: its processes, devices, groups and kernel messages.
#include "diagnosis/Diagnosis.h"
#include "testing/core/StagedMachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace qncomm::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class Machine : public ::testing::Test, protected StagedMachine {
  protected:
    /// The row of that name, as "pass: text".
    std::string Row(const std::string& name) const {
        const Examined examined{.port = Path, .machine = Look(), .line = {}};
        for (const Check& row : ChecksOf(examined))
            if (row.name == name) return std::string(NameOf(row.result)) + ": " + row.text;
        return {};
    }
};

TEST_F(Machine, ADeviceThatIsNotThereIsSaidToBeMissing) {
    EXPECT_TRUE(Look().exists);
    EXPECT_FALSE(Look("/dev/ttyUSB1").exists);
    EXPECT_EQ(Row("device"), "pass: /dev/ttyUSB0 is there.");
}

TEST_F(Machine, ALinkIsKnownByWhatIsBehindIt) {
    fs::create_symlink(Real(Path), mFolder.File("dev/printer"));
    EXPECT_EQ(Look("/dev/printer").name, "ttyUSB0");
}

TEST_F(Machine, AccessIsJudgedByOwnerGroupAndMode) {
    EXPECT_EQ(Look().access, DeviceAccess::NotInGroup);
    EXPECT_EQ(Look().group, "dialout");
    EXPECT_EQ(Look().user, "anna");
    Group("bert,anna");
    EXPECT_EQ(Look().access, DeviceAccess::NotYetInGroup);
    User({mDevice.st_gid});
    EXPECT_EQ(Look().access, DeviceAccess::Granted);
    ::chmod(Real(Path).c_str(), 0600);
    EXPECT_EQ(Look().access, DeviceAccess::NobodyOfGroup);
    ::chmod(Real(Path).c_str(), 0606);
    EXPECT_EQ(Look().access, DeviceAccess::NobodyOfGroup) << "the group's bits are not there";
    User({});
    EXPECT_EQ(Look().access, DeviceAccess::Granted);
}

TEST_F(Machine, OtherProgramsAreToldWithTheirLock) {
    EXPECT_EQ(Row("other programs"), "pass: No other program has it open.");
    Process(4242, "minicom");
    Opens(4242);
    ASSERT_THAT(Look().users.found, SizeIs(1));
    EXPECT_FALSE(Look().users.found[0].locks);
    EXPECT_THAT(Row("other programs"),
                HasSubstr("warning: It is held by minicom (process 4242), without a lock"));
    Locks(4242);
    ASSERT_THAT(Look().users.found, SizeIs(1));
    EXPECT_TRUE(Look().users.found[0].locks);
    EXPECT_EQ(Row("other programs"), "fail: It is held by minicom (process 4242).");
}

TEST_F(Machine, ServicesThatTakePortsAreToldWhereTheyConcernThisOne) {
    EXPECT_THAT(Look().services, IsEmpty());
    Process(500, "ModemManager");
    Process(501, "agetty", std::string("/sbin/agetty\0ttyS0\0", 19));
    EXPECT_EQ(Row("services"),
              "warning: ModemManager runs: it types on new USB serial ports to find modems.");
    ASSERT_THAT(Look().services, SizeIs(1));
    Put("dev/ttyS0", "");
    ASSERT_THAT(Look("/dev/ttyS0").services, SizeIs(1));
    EXPECT_EQ(Look("/dev/ttyS0").services[0].cure, "sudo systemctl stop serial-getty@ttyS0");
    EXPECT_TRUE(Look("/dev/ttyS0").services[0].owns);
}

TEST_F(Machine, ProcessesThatCannotBeSeenAreNotCalledHealthy) {
    fs::remove_all(mFolder.File("proc/1"));
    EXPECT_EQ(Row("services"), "unknown: The processes of others cannot be seen.");
}

TEST_F(Machine, TheAdapterTellsItsNumbers) {
    const fs::path usb = mFolder.File("sys/devices/usb1/1-1");
    fs::create_directories(usb / "1-1:1.0/ttyUSB0");
    for (const auto& [name, text] : {std::pair{"idVendor", "0403"},
                                     {"idProduct", "6001"},
                                     {"manufacturer", "FTDI"},
                                     {"product", "FT232R USB UART"},
                                     {"serial", "A600ABCD"}})
        std::ofstream(usb / name) << text << "\n";
    fs::create_directories(mFolder.File("sys/class/tty/ttyUSB0"));
    fs::create_symlink(usb / "1-1:1.0/ttyUSB0", mFolder.File("sys/class/tty/ttyUSB0/device"));
    EXPECT_EQ(Row("adapter"), "pass: FTDI FT232R USB UART (0403:6001), serial number A600ABCD.");
    EXPECT_EQ(Look().devices.front().path, mFolder.File("dev/ttyUSB0"));
}

TEST_F(Machine, AnAdapterThatIsNotSeenIsUnknown) {
    EXPECT_EQ(Row("adapter"), "unknown: No USB adapter is seen behind ttyUSB0.");
}

TEST_F(Machine, TheKernelsLastMessageAboutTheDeviceIsShown) {
    EXPECT_EQ(Row("kernel"), "pass: It keeps no message about ttyUSB0.");
    Put("dev/kmsg", "6,1,100,-;usb 1-1: FTDI converter now attached to ttyUSB0\n SUBSYSTEM=usb\n"
                    "6,2,200,-;usb 1-2: other converter now disconnected from ttyUSB01\n");
    EXPECT_EQ(Row("kernel"),
              "pass: Its last message: usb 1-1: FTDI converter now attached to ttyUSB0");
    Put("dev/kmsg", "6,3,300,-;ftdi_sio ttyUSB0: converter now disconnected from ttyUSB0\n");
    EXPECT_THAT(Row("kernel"), HasSubstr("warning: "));
    EXPECT_TRUE(TellsOfLoss(Look().messages->back()));
    fs::remove(mFolder.File("dev/kmsg"));
    EXPECT_THAT(Row("kernel"), HasSubstr("unknown: "));
}

} // namespace
} // namespace qncomm::testing
