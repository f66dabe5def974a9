// Addresses, port numbers, this machine's devices and the trace's lines.

#include "Rfc2217Channel.h"
#include "SocketPlace.h"
#include "TcpChannel.h"
#include "assembly/AllChannelKinds.h"
#include "common/MemorySettings.h"
#include "serial/PortBindings.h"
#include "serial/PortListing.h"
#include "serial/SerialDevices.h"
#include "testing/core/ScratchFolder.h"
#include "testing/line/PtyPair.h"
#include "trace/JsonLinesTrace.h"
#include "trace/TraceReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace qncomm::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// -- Addresses

TEST(Address, ReadsADevice) {
    const auto parsed = ParsePortAddress(" /dev/ttyUSB0 ");
    ASSERT_TRUE(parsed.address) << parsed.error;
    EXPECT_EQ(parsed.address->kind, &TtyKind);
    EXPECT_EQ(parsed.address->text, "/dev/ttyUSB0");
}

TEST(Address, ReadsASocket) {
    struct Row {
        const char* text;
        const char* host;
        const char* service;
    };
    for (const Row& row :
         {Row{"tcp://printer:9100", "printer", "9100"}, Row{"TCP://10.0.0.7:1", "10.0.0.7", "1"},
          Row{"tcp://[::1]:65535", "::1", "65535"}, Row{"tcp://printer:09", "printer", "9"}}) {
        const auto parsed = ParsePortAddress(row.text);
        ASSERT_TRUE(parsed.address) << row.text << ": " << parsed.error;
        EXPECT_EQ(parsed.address->kind, &TcpKind);
        const auto place = ParseSocketPlace(parsed.address->text, TcpKind.scheme);
        ASSERT_TRUE(place) << row.text;
        EXPECT_EQ(place->host, row.host);
        EXPECT_EQ(place->service, row.service);
    }
    EXPECT_EQ(ParsePortAddress("rfc2217://printer:7000").address->kind, &Rfc2217Kind);
}

TEST(Address, ReadsAVirtualPrinter) {
    const auto parsed = ParsePortAddress("sim:R7G?baud=57600&format=n,8,2", AllChannelKinds());
    ASSERT_TRUE(parsed.address) << parsed.error;
    EXPECT_EQ(parsed.address->kind, &VirtualPrinterKind);
    EXPECT_EQ(parsed.address->text, "sim:R7G?baud=57600&format=n,8,2");
}

TEST(Address, SaysWhatIsWrong) {
    struct Row {
        std::string text;
        const char* error;
    };
    for (const Row& row :
         {Row{"", "missing"}, Row{"ttyUSB0", "/dev/ttyUSB0"}, Row{"/dev/", "folder"},
          Row{"tcp://", "host:port"}, Row{"tcp://printer", "host:port"},
          Row{"tcp://printer:", "host:port"}, Row{"tcp://printer:0", "host:port"},
          Row{"tcp://printer:65536", "host:port"}, Row{"tcp://:9100", "host:port"},
          Row{"tcp://::1:9100", "brackets"}, Row{"tcp://a/b:9100", "host:port"},
          Row{"tcp://printer:91x", "host:port"}, Row{"http://printer:80", "tcp://host:port"},
          Row{"sim:", "sim:"}, Row{"sim:NOPRINTER", "NOPRINTER"}, Row{"sim:R7G?speed=9", "speed"},
          Row{std::string("/dev/tty\0x", 10), "NUL"}}) {
        const auto parsed = ParsePortAddress(row.text, AllChannelKinds());
        EXPECT_FALSE(parsed.address) << row.text;
        EXPECT_THAT(parsed.error, HasSubstr(row.error));
    }
}

TEST(Address, IsOfTheKindsThatTheProgramKnows) {
    EXPECT_EQ(ParsePortAddress("sim:R7G").error,
              "\"sim:R7G\": an address is a device such as /dev/ttyUSB0, usb:SERIAL of an "
              "adapter, tcp://host:port, or rfc2217://host:port");
    EXPECT_EQ(ParsePortAddress("ttyUSB0", AllChannelKinds()).error,
              "\"ttyUSB0\": an address is a device such as /dev/ttyUSB0, usb:SERIAL of an "
              "adapter, tcp://host:port, rfc2217://host:port, or sim:MODEL for the virtual "
              "printer");
}

TEST(Address, ReadsPortNumbers) {
    EXPECT_EQ(ParsePortNumber("COM3"), 3);
    EXPECT_EQ(ParsePortNumber("com16:"), 16);
    EXPECT_EQ(ParsePortNumber(" 0 "), 0);
    for (const char* text : {"", "COM", "COM17", "-1", "3x", "3:", "99999999999", "/dev/ttyS3"})
        EXPECT_FALSE(ParsePortNumber(text)) << text;
}

// -- Bindings

std::vector<std::string> Rows(const PortBindings& bindings) {
    std::vector<std::string> rows;
    for (const PortBinding& binding : bindings.List())
        rows.push_back(std::to_string(binding.number) + " " + binding.address.text + " "
                       + NameOf(binding.source));
    return rows;
}

TEST(Bindings, TheStrongerSourceKeepsTheNumber) {
    MemorySettings settings;
    settings.WriteValue("Ports", "com2", "/dev/ttyS2");
    settings.WriteValue("Ports", "COM4", "/dev/ttyS4");
    PortBindings bindings;
    EXPECT_EQ(bindings.Give(2, "/dev/ttyUSB9"), "");
    EXPECT_THAT(bindings.AddSettings(settings), IsEmpty());
    bindings.AddDevices({{"/dev/ttyUSB0", "Adapter"},
                         {"/dev/ttyUSB9", ""},
                         {"/dev/ttyS4", "Board"},
                         {"/dev/ttyACM0", ""}});
    EXPECT_THAT(Rows(bindings), ElementsAre("1 /dev/ttyUSB0 machine", "2 /dev/ttyUSB9 given",
                                            "3 /dev/ttyACM0 machine", "4 /dev/ttyS4 settings"));
    EXPECT_EQ(bindings.Find(1)->description, "Adapter");
    EXPECT_EQ(bindings.Find(4)->description, "Board");
    EXPECT_EQ(bindings.NumberOf("/dev/ttyACM0"), 3);
    EXPECT_EQ(bindings.NumberOf("/dev/ttyACM1"), std::nullopt);
    EXPECT_EQ(bindings.Give(4, "/dev/ttyS5"), "");
    EXPECT_EQ(bindings.Find(4)->address.text, "/dev/ttyS5");
}

TEST(Bindings, ADeviceKnownByALinkGetsNoSecondNumber) {
    const ScratchFolder folder;
    std::ofstream(folder.File("ttyUSB0")) << "";
    std::filesystem::create_symlink(folder.File("ttyUSB0"), folder.File("by-id"));
    PortBindings bindings;
    EXPECT_EQ(bindings.Give(5, folder.File("by-id")), "");
    bindings.AddDevices({{folder.File("ttyUSB0"), "Adapter"}});
    EXPECT_THAT(bindings.List(), SizeIs(1));
    EXPECT_EQ(bindings.Find(5)->description, "Adapter");
}

TEST(Bindings, NumbersAndAddressesOutOfRangeAreRefused) {
    PortBindings bindings;
    EXPECT_THAT(bindings.Give(17, "/dev/ttyS0"), HasSubstr("out of range"));
    EXPECT_THAT(bindings.Give(-1, "/dev/ttyS0"), HasSubstr("out of range"));
    EXPECT_THAT(bindings.Give(1, "nonsense"), HasSubstr("nonsense"));
    MemorySettings settings;
    settings.WriteValue("Ports", "COM1", "nonsense");
    EXPECT_THAT(bindings.AddSettings(settings), ElementsAre(HasSubstr("COM1 in the settings")));
    EXPECT_THAT(bindings.List(), IsEmpty());
    EXPECT_EQ(bindings.Find(17), nullptr);
    EXPECT_EQ(bindings.Find(-1), nullptr);
}

TEST(Bindings, MoreDevicesThanNumbersLeaveTheLastOnesOut) {
    std::vector<SerialDevice> devices;
    for (int number = 0; number < 20; ++number)
        devices.push_back({"/dev/ttyUSB" + std::to_string(number), ""});
    PortBindings bindings;
    bindings.AddDevices(devices);
    EXPECT_THAT(bindings.List(), SizeIs(16));
    EXPECT_EQ(bindings.Find(0), nullptr);
    EXPECT_EQ(bindings.Find(16)->address.text, "/dev/ttyUSB15");
}

TEST(Listing, TellsTheStateOfEachPort) {
    const PtyPair pty = OpenPty();
    PortBindings bindings(AllChannelKinds());
    EXPECT_EQ(bindings.Give(1, pty.path), "");
    EXPECT_EQ(bindings.Give(2, "/dev/qncomm-none"), "");
    EXPECT_EQ(bindings.Give(3, "/dev/null"), "");
    EXPECT_EQ(bindings.Give(4, "tcp://127.0.0.1:9"), "");
    EXPECT_EQ(bindings.Give(5, "sim:R7G"), "");
    std::vector<std::string> states;
    for (const PortListing& row : ListPorts(bindings))
        states.push_back(NameOf(row.state) + (row.detail.empty() ? "" : ": " + row.detail));
    EXPECT_THAT(states, ElementsAre("free", "missing: there is no such device",
                                    "unusable: this is no serial device", "unchecked", "free"));
}

// -- This machine's devices

class DevicesTest : public ::testing::Test {
  protected:
    void Add(const std::string& name, bool hardware, const std::string& type = "") {
        const std::filesystem::path entry = std::filesystem::path(mFolder.File("tty")) / name;
        std::filesystem::create_directories(hardware ? entry / "device" : entry);
        if (!type.empty()) std::ofstream(entry / "type") << type << "\n";
    }

    ScratchFolder mFolder;
};

TEST_F(DevicesTest, OnlyThoseWithHardwareAreFoundInAStableOrder) {
    for (const char* name : {"ttyS10", "ttyS2", "ttyUSB10", "ttyUSB9", "ttyACM0", "ttyAMA1"})
        Add(name, true);
    Add("ttyS0", true, "4");
    Add("ttyS1", true, "0"); // the driver's place for a UART that is not fitted
    Add("ttyS3", false);
    Add("tty7", true);
    Add("console", true);
    Add("ttyprintk", true);
    std::vector<std::string> paths;
    for (const SerialDevice& device : FindSerialDevices({mFolder.File("tty"), "/dev"}))
        paths.push_back(device.path);
    EXPECT_THAT(paths, ElementsAre("/dev/ttyUSB9", "/dev/ttyUSB10", "/dev/ttyACM0", "/dev/ttyS0",
                                   "/dev/ttyS2", "/dev/ttyS10", "/dev/ttyAMA1"));
}

TEST_F(DevicesTest, AUsbAdapterIsCalledByItsName) {
    const std::filesystem::path usb = mFolder.File("usb1");
    std::filesystem::create_directories(usb / "1-1:1.0" / "ttyUSB0");
    std::ofstream(usb / "product") << "Serial Adapter\n";
    std::ofstream(usb / "manufacturer") << "Somebody\n";
    std::filesystem::create_directories(mFolder.File("tty") + "/ttyUSB0");
    std::filesystem::create_symlink(usb / "1-1:1.0" / "ttyUSB0",
                                    mFolder.File("tty") + "/ttyUSB0/device");
    const auto devices = FindSerialDevices({mFolder.File("tty"), "/dev"});
    ASSERT_THAT(devices, SizeIs(1));
    EXPECT_EQ(devices[0].description, "Somebody Serial Adapter");
}

TEST_F(DevicesTest, AnAdapterIsFoundByItsSerialNumberUnderItsPresentName) {
    const DeviceFolders folders{mFolder.File("tty"), "/dev"};
    for (const char* name : {"ttyUSB0", "ttyUSB3"}) {
        const std::filesystem::path usb = mFolder.File("usb-" + std::string(name));
        std::filesystem::create_directories(usb / "1-1:1.0" / name);
        std::ofstream(usb / "product") << "Serial Adapter\n";
        if (name[6] == '3') std::ofstream(usb / "serial") << "QN4711\n";
        std::filesystem::create_directories(folders.tty + "/" + name);
        std::filesystem::create_symlink(usb / "1-1:1.0" / name,
                                        folders.tty + "/" + name + "/device");
    }
    EXPECT_EQ(FindUsbDevice("QN4711", folders), "/dev/ttyUSB3");
    EXPECT_EQ(FindUsbDevice("QN4712", folders), "");
    EXPECT_EQ(FindUsbDevice("", folders), "") << "one without a number is nobody's";
}

TEST(Address, OfAnAdapterHoldsItsSerialNumber) {
    const auto parsed = ParsePortAddress("usb:A50285BI");
    ASSERT_TRUE(parsed.address) << parsed.error;
    EXPECT_EQ(parsed.address->kind, &UsbKind);
    EXPECT_FALSE(ParsePortAddress("usb:").address);
    const PortStatus status = UsbKind.look("usb:no-such-adapter");
    EXPECT_EQ(status.state, PortState::Missing);
    EXPECT_THAT(status.detail, HasSubstr("plugged in"));
}

TEST_F(DevicesTest, AMachineWithoutThemHasNone) {
    EXPECT_THAT(FindSerialDevices({mFolder.File("none"), "/dev"}), IsEmpty());
}

// -- Trace

TEST(Trace, ALineHoldsEveryByte) {
    EXPECT_EQ(TraceLineOf({0, 12, TraceKind::Sent, "FILES \"ram:\"\r\n", 0}),
              R"({"ms":12,"kind":"tx","bytes":"FILES \"ram:\"\r\n"})");
    EXPECT_EQ(TraceLineOf({0, 0, TraceKind::Received, std::string("\0\x1f\x7f\xff\\\t", 6), 0}),
              R"({"ms":0,"kind":"rx","bytes":"\u0000\u001f\u007f\u00ff\\\t"})");
    EXPECT_EQ(TraceLineOf({0, 3, TraceKind::Event, "close", 0}),
              R"({"ms":3,"kind":"event","bytes":"close"})");
}

TEST(Trace, AFileHoldsOneLineForEachRecordFromTimeZero) {
    const ScratchFolder folder;
    JsonLinesTrace trace(folder.File("trace"));
    ASSERT_TRUE(trace.Result().Ok());
    trace.Record(5000, TraceKind::Sent, "A");
    trace.Record(5017, TraceKind::Received, "B");
    std::ifstream stream(folder.File("trace"));
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_EQ(text, "{\"ms\":0,\"kind\":\"tx\",\"bytes\":\"A\"}\n"
                    "{\"ms\":17,\"kind\":\"rx\",\"bytes\":\"B\"}\n");
}

TEST(Trace, AFileThatCannotBeWrittenIsToldAndHarmsNothing) {
    JsonLinesTrace missing("/nowhere/at/all");
    EXPECT_EQ(missing.Result().status, IoStatus::Missing);
    missing.Record(0, TraceKind::Sent, "A");
    JsonLinesTrace full("/dev/full");
    full.Record(0, TraceKind::Sent, "A");
    EXPECT_EQ(full.Result().status, IoStatus::Failed);
    full.Record(1, TraceKind::Sent, "B");
}

} // namespace
} // namespace qncomm::testing
