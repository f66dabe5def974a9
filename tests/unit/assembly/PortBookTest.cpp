#include "assembly/PortBook.h"

#include "assembly/AllChannelKinds.h"
#include "common/MemorySettings.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"

#include <gmock/gmock.h>

namespace qncomm {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// A store that takes nothing, as a full disk does.
struct FullStore : MemorySettings {
    void WriteValue(std::string_view /*sSection*/, std::string_view /*sKey*/,
                    std::string_view /*sValue*/) override {
        RaiseRuntimeError(RtDiskFull, "FullStore");
    }
};

class Ports : public ::testing::Test {
  protected:
    /// The book as the next run would read it, on a machine with two serial devices.
    PortBook Book() const {
        return PortBook(mStore, AllChannelKinds(),
                        {{"/dev/ttyUSB0", "Adapter"}, {"/dev/ttyUSB1", ""}});
    }
    std::string Stored(std::string_view section, std::string_view key) const {
        return mStore->ReadValue(section, key, "");
    }

    std::shared_ptr<MemorySettings> mStore = std::make_shared<MemorySettings>();
};

// -- Choosing

TEST_F(Ports, WithNothingConfiguredThereIsNoneAndNoComplaint) {
    const ChosenPort port = Book().Configured();
    EXPECT_FALSE(port);
    EXPECT_EQ(port.problem, PortProblem::NotConfigured);
    EXPECT_EQ(port.message, "");
    EXPECT_EQ(Book().ConfiguredNumber(), std::nullopt);
}

TEST_F(Ports, TheConfiguredOneIsTheStoredOneElseTheLowestThatTheStoreBinds) {
    mStore->WriteValue("Ports", "COM0", "sim:R7A");
    mStore->WriteValue("Ports", "COM5", "sim:R7C");
    mStore->WriteValue("Ports", "COM7", "sim:R7G");
    EXPECT_EQ(Book().Configured().address, "sim:R7C") << "0 cannot be chosen";
    mStore->WriteValue("Settings", "Commport", "7");
    const ChosenPort port = Book().Choose("");
    EXPECT_EQ(port.address, "sim:R7G");
    EXPECT_TRUE(port.configured);
    EXPECT_FALSE(port.lent);
}

TEST_F(Ports, AConfiguredOneWhoseDeviceIsNotThereSaysSo) {
    mStore->WriteValue("Settings", "Commport", "9");
    const ChosenPort port = Book().Configured();
    EXPECT_FALSE(port);
    EXPECT_EQ(port.problem, PortProblem::Unbound);
    EXPECT_EQ(port.message, "COM9 stands for no address: its device is not there.");
    EXPECT_EQ(Book().ConfiguredNumber(), 9);
}

TEST_F(Ports, ANumberOrAnAddressNamesTheSamePort) {
    PortBook book = Book();
    for (const char* name : {"COM2", "2", "/dev/ttyUSB1"}) {
        const ChosenPort port = book.Choose(name);
        EXPECT_EQ(port.number, 2) << name;
        EXPECT_EQ(port.address, "/dev/ttyUSB1") << name;
        EXPECT_FALSE(port.lent) << name;
        EXPECT_FALSE(port.configured) << name;
    }
}

TEST_F(Ports, AnAddressWithoutANumberIsLentTheHighestFreeOne) {
    mStore->WriteValue("Ports", "COM16", "sim:R7A");
    PortBook book = Book();
    const ChosenPort port = book.Choose("tcp://h:1");
    EXPECT_EQ(port.number, 15);
    EXPECT_TRUE(port.lent);
    EXPECT_EQ(book.Choose("tcp://h:1").number, 15) << "and keeps it for the run";
}

TEST_F(Ports, Port0IsLentAnotherNumber) {
    mStore->WriteValue("Ports", "COM0", "sim:R7A");
    PortBook book = Book();
    const ChosenPort port = book.Choose("COM0");
    EXPECT_EQ(port.number, 16);
    EXPECT_EQ(port.address, "sim:R7A");
}

TEST_F(Ports, WhatNamesNoPortIsRefusedWithAReason) {
    struct Row {
        const char* name;
        PortProblem problem;
        const char* start;
    };
    PortBook book = Book();
    for (const Row& row : {Row{"nowhere", PortProblem::NoAddress, "nowhere: "},
                           Row{"17", PortProblem::NoSuchNumber, "17: port numbers go from 0 to 16"},
                           Row{"-1", PortProblem::NoSuchNumber, "-1: "},
                           Row{"COM9", PortProblem::Unbound, "COM9 stands for no address"}}) {
        const ChosenPort port = book.Choose(row.name);
        EXPECT_FALSE(port) << row.name;
        EXPECT_EQ(port.problem, row.problem) << row.name;
        EXPECT_THAT(port.message, ::testing::StartsWith(row.start));
    }
}

TEST_F(Ports, BindingsThatCannotBeReadAreTold) {
    mStore->WriteValue("Ports", "COM4", "nowhere");
    EXPECT_THAT(Book().Warnings(), ElementsAre(HasSubstr("COM4")));
}

// -- Remembering

TEST_F(Ports, ARememberedOneIsTheConfiguredOneOfTheNextRun) {
    PortBook book = Book();
    const ChosenPort kept = book.Remember(book.Choose("sim:R7A"), {{{}, "Baudrate", "57600"}});
    EXPECT_EQ(kept.number, 3) << "the lowest that no device has";
    EXPECT_FALSE(kept.lent);
    EXPECT_TRUE(kept.configured);
    EXPECT_EQ(Stored("Ports", "COM3"), "sim:R7A");
    EXPECT_EQ(Stored("Settings", "Baudrate"), "57600");
    EXPECT_EQ(book.Bindings().Find(16), nullptr) << "the lent number is free again";
    const ChosenPort next = Book().Configured();
    EXPECT_EQ(next.address, "sim:R7A");
    EXPECT_TRUE(next.configured);
    EXPECT_EQ(Book().SettingsFor(next), mStore);
}

TEST_F(Ports, OneIsRememberedTwiceUnderOneNumber) {
    PortBook book = Book();
    book.Remember(book.Choose("sim:R7A"));
    EXPECT_EQ(book.Remember(book.Choose("sim:R7A")).number, 3);
    EXPECT_EQ(Stored("Ports", "COM4"), "");
}

TEST_F(Ports, AMachinesDeviceIsRememberedUnderItsOwnNumber) {
    PortBook book = Book();
    EXPECT_EQ(book.Remember(book.Choose("/dev/ttyUSB1")).number, 2);
    EXPECT_EQ(Stored("Ports", "COM2"), "/dev/ttyUSB1");
}

TEST_F(Ports, AStoreThatTakesNothingLeavesThePortLent) {
    PortBook book(std::make_shared<FullStore>(), AllChannelKinds(), {});
    const ChosenPort port = book.Choose("sim:R7A");
    EXPECT_THROW(book.Remember(port), QNError);
    EXPECT_EQ(book.Choose("sim:R7A").number, port.number);
}

TEST_F(Ports, OneForThisRunLeavesTheConfiguredOneAndItsSettingsAlone) {
    PortBook book = Book();
    book.Remember(book.Choose("sim:R7A"), {{{}, "Baudrate", "9600"}});
    const ChosenPort port = book.Choose("tcp://127.0.0.1:4000");
    ASSERT_TRUE(port);
    const auto settings = book.SettingsFor(port);
    EXPECT_EQ(settings->ReadValue("Settings", "Commport", ""), std::to_string(port.number));
    settings->WriteValues({{"Settings", "Commport", "7"}, {"Settings", "Baudrate", "57600"}});
    EXPECT_EQ(settings->ReadValue("settings", "baudrate", ""), "57600");
    EXPECT_EQ(Stored("Settings", "Baudrate"), "9600");
    EXPECT_EQ(book.Configured().address, "sim:R7A");
    EXPECT_EQ(Stored("Connection tcp://127.0.0.1:4000", "Baudrate"), "57600");
}

// -- Addresses with options

TEST_F(Ports, AnOptionIsAddedForThisRunAlone) {
    mStore->WriteValue("Ports", "COM5", "sim:R7A");
    PortBook book = Book();
    const ChosenPort port = book.Choose("COM5");
    EXPECT_EQ(book.GiveOption(port, "labels", "/tmp/l"), "");
    EXPECT_EQ(book.Bindings().Find(5)->address.text, "sim:R7A?labels=/tmp/l");
    EXPECT_EQ(Stored("Ports", "COM5"), "sim:R7A");
    EXPECT_EQ(book.AddressOf(5), "sim:R7A") << "what is remembered belongs to the printer";
    EXPECT_EQ(book.AddressOf(1), "/dev/ttyUSB0");
    EXPECT_EQ(book.AddressOf(9), "");
    EXPECT_NE(book.GiveOption(book.Choose("sim:R7G"), "nonsense", "1"), "");
}

TEST_F(Ports, LabelsGoIntoTheFolderOfTheAddressOrTheGivenOne) {
    PortBook book = Book();
    EXPECT_EQ(book.GiveLabels(book.Choose("sim:R7G"), "/tmp/l"), "/tmp/l");
    EXPECT_EQ(book.GiveLabels(book.Choose("sim:R7A?labels=/x&baud=9600"), "/tmp/l"), "/x");
    EXPECT_EQ(book.GiveLabels(book.Choose("tcp://h:1"), "/tmp/l"), "");
}

TEST(AddressOptions, AreFoundByNameAndAddedAtTheEnd) {
    EXPECT_EQ(OptionOf("sim:R7G?baud=57600&labels=/x", "labels"), "/x");
    EXPECT_EQ(OptionOf("sim:R7G?baud=57600", "labels"), "");
    EXPECT_EQ(OptionOf("sim:R7G", "labels"), "");
    EXPECT_EQ(WithOption("sim:R7G", "baud", "9600"), "sim:R7G?baud=9600");
    EXPECT_EQ(WithOption("sim:R7G?a=1", "baud", "9600"), "sim:R7G?a=1&baud=9600");
    EXPECT_TRUE(IsVirtual("sim:R7G"));
    EXPECT_FALSE(IsVirtual("/dev/simple"));
}

} // namespace
} // namespace qncomm
