#include "automation/CallMember.h"
#include "common/Text.h"
#include "link/clsDataLink.h"
#include "printer/clsQuorin.h"
#include "testing/core/ControlFixture.h"

namespace qncomm {
namespace {

using testing::ControlFixture;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Strings;

Variant Line(std::string_view text) {
    return Variant(text, TextKind::Line);
}

Variant RecordOf(std::string_view name, std::int32_t size) {
    return Variant(Variant::Record{{"Name", Line(name)}, {"Size", size}});
}

/// Command layer, link, settings and records, as a host calls them.
class LayersByName : public ControlFixture {
  protected:
    LayersByName() {
        mModel = "R7A";
        mReplies["FILES\"ram:\""] = {"FILES ON ram:", "A.PRG          12    B.PRG          34",
                                     "1000 BYTES FREE  46 BYTES USED"};
    }

    static MemberOutcome CallOn(const SurfaceObject& object, std::string_view of,
                                std::string_view name, const std::vector<Variant>& arguments = {}) {
        return CallMember(object, FindMember(ClassNamed(of), name, arguments.size()), arguments);
    }
    MemberOutcome Layer(std::string_view name, const std::vector<Variant>& arguments = {}) {
        return CallOn(*mControl, "clsQuorin", name, arguments);
    }
    MemberOutcome Link(std::string_view name, const std::vector<Variant>& arguments = {}) {
        return CallOn(*mControl, "clsDataLink", name, arguments);
    }
    [[nodiscard]] Subscription Hear(std::string_view of, std::string_view name,
                                    EventHandler handler) {
        return ConnectEvent(*mControl, FindEvent(ClassNamed(of), name), std::move(handler));
    }
};

TEST_F(LayersByName, TheCommandLayerGivesBackWhatItMadeOfAnArgument) {
    Run();
    const MemberOutcome outcome = Layer("Files", {Line("RAM:")});
    EXPECT_TRUE(outcome.result.IsNothing());
    EXPECT_EQ(outcome.writtenBack, (Variant::Record{{"sDev", Line("ram:")}}));
}

TEST_F(LayersByName, DevicesAreRecordsThatHoldTheRecordsOfTheirFiles) {
    Run();
    Layer("Files", {Line("ram:")});
    const Variant devices = Layer("PrinterDevices").result;
    const Variant& ram =
        ItemOf(*devices.As<Variant::List>(), ClassNamed("clsPrinterDevice"), Variant("RAM:"));
    const auto field = [&](const char* name) {
        return CallOn(SurfaceObject(ram), "clsPrinterDevice", name).result;
    };
    EXPECT_EQ(field("Name"), Line("ram:"));
    EXPECT_EQ(field("BytesFree"), Variant(std::int32_t{1000}));
    EXPECT_EQ(field("Dirty"), Variant(false));
    EXPECT_EQ(field("Files"), Variant(Variant::List{RecordOf("A.PRG", 12), RecordOf("B.PRG", 34)}));
}

TEST_F(LayersByName, ACollectionThatIsReadCanBeSetAgainWithItsKeys) {
    Run();
    Layer("Files", {Line("ram:")});
    const Variant read = Layer("PrinterDevices").result;
    Layer("PrinterDevices", {Variant(Variant::List{})});
    EXPECT_TRUE(mControl->Layer().PrinterDevices()->IsEmpty());
    Layer("PrinterDevices", {read});
    const auto ram = mControl->Layer().PrinterDevices()->Item("ram:");
    EXPECT_EQ(ram->BytesUsed, 46);
    EXPECT_EQ(ram->Files->Item("b.prg")->Size, 34);
    EXPECT_EQ(Layer("PrinterDevices").result, read);
}

TEST_F(LayersByName, WhatIsNoCollectionOfRecordsIsRefused) {
    Run();
    EXPECT_RAISED(Layer("PrinterDevices", {Line("ram:")}), RtTypeMismatch);
    EXPECT_RAISED(Layer("PrinterDevices", {Variant(Variant::List{Line("ram:")})}), RtTypeMismatch);
    EXPECT_RAISED(Layer("PrinterDevices", {Variant(Variant::List{RecordOf("ram:", 1)})}),
                  RtNoSuchMember);
}

TEST_F(LayersByName, AnItemIsFoundByItsPositionOrItsKey) {
    const Variant::List files{RecordOf("A", 1), RecordOf("B", 2)};
    const SurfaceClass& file = ClassNamed("clsPrinterFile");
    EXPECT_EQ(ItemOf(files, file, std::int32_t{2}), files[1]);
    EXPECT_EQ(ItemOf(files, file, Variant("b")), files[1]);
    EXPECT_RAISED(ItemOf(files, file, std::int32_t{0}), RtSubscript);
    EXPECT_RAISED(ItemOf(files, file, std::int32_t{3}), RtSubscript);
    EXPECT_RAISED(ItemOf(files, file, Variant("C")), RtInvalidCall);
    EXPECT_RAISED(ItemOf(files, file, Variant(Variant::List{})), RtTypeMismatch);
    const Variant::Record error{{"QNModuleName", Variant("m.prg")}, {"QNErrInLine", 12}};
    EXPECT_EQ(ItemOf({Variant(error)}, ClassNamed("clsQNModuleError"), Variant("M.PRG:12")),
              Variant(error));
}

TEST_F(LayersByName, ANamesListTellsTheDevicesOfTheModel) {
    Run();
    EXPECT_EQ(Layer("Devices").result,
              Variant(Variant::List{Line("ram:"), Line("card1:"), Line("rom:")}));
    EXPECT_EQ(Layer("CanList").result, Variant(true));
}

TEST_F(LayersByName, AHostSpeaksToThePrinterItself) {
    mReplies["PRINT 1"] = {"1"};
    Run();
    EXPECT_EQ(Layer("PortOpen").result, Variant(true));
    const MemberOutcome sent = Link("OutputText", {Line("PRINT 1\r\n")});
    EXPECT_EQ(sent.writtenBack, (Variant::Record{{"sText", Line("")}}));
    const MemberOutcome reply = Link("InputText", {Variant(Variant::List{})});
    EXPECT_EQ(reply.result, Variant(std::int32_t{3}));
    EXPECT_EQ(reply.writtenBack.at(0).second,
              Variant(Variant::List{Line("PRINT 1"), Line("1"), Line("Ok")}));
    Layer("PortClose");
}

TEST_F(LayersByName, TheLinksPropertiesAreReadAndSet) {
    Run();
    EXPECT_EQ(Link("IsValidPort", {std::int32_t{1}}).result, Variant(true));
    EXPECT_EQ(Link("IsValidPort", {std::int32_t{9}}).result, Variant(false));
    EXPECT_EQ(Link("Stdio").result, Variant(std::int32_t{1}));
    Link("ImmediateMode", {true});
    EXPECT_EQ(Link("ImmediateMode").result, Variant(true));
    EXPECT_EQ(Link("RegSettings").result, Variant(mSettings));
}

TEST_F(LayersByName, TheSettingsAreAnObjectOfTheirOwn) {
    Run();
    const SurfaceObject settings(CallOn(*mControl, "QNComm", "RegSettings").result);
    CallOn(settings, "RegSettings", "WriteValue", {Variant("Own"), Variant("Key"), Variant("7")});
    EXPECT_EQ(
        CallOn(settings, "RegSettings", "ReadValue", {Variant("own"), Variant("key"), Line("")})
            .result,
        Line("7"));
    EXPECT_EQ(mSettings->ReadValue("Own", "Key", ""), "7");
}

TEST_F(LayersByName, AMemberOfAnotherClassIsRefused) {
    Run();
    const SurfaceObject settings{Variant(mSettings)};
    const SurfaceObject record{RecordOf("A", 1)};
    EXPECT_RAISED(CallOn(settings, "QNComm", "Fre"), RtNoSuchMember);
    EXPECT_RAISED(CallOn(settings, "clsPrinterFile", "Name"), RtNoSuchMember);
    EXPECT_RAISED(CallOn(record, "clsPrinterDevice", "Valid"), RtNoSuchMember);
    EXPECT_RAISED(CallOn(*mControl, "clsPrinterFile", "Name"), RtNoSuchMember);
    EXPECT_RAISED(CallOn(*mControl, "RegSettings", "ReadValue", {Line("a"), Line("b"), Line("c")}),
                  RtNoSuchMember);
    EXPECT_RAISED(ClassNamed("Nada"), RtNoSuchMember);
}

TEST_F(LayersByName, BeforeRunTimeAndAfterTearDownThereIsNoLayer) {
    EXPECT_RAISED(Layer("Fre"), RtObjectNotSet);
    Run();
    mControl->TearDown();
    EXPECT_RAISED(Link("Stdio"), RtObjectNotSet);
}

TEST_F(LayersByName, AnEventIsHeardAndWhatItPassesByReferenceGoesBack) {
    Run();
    Strings heard;
    const Subscription subscription =
        Hear("QNComm", "statusevent", [&](std::vector<Variant>& arguments) {
            heard.push_back(AsString(arguments.at(0)) + " " + AsString(arguments.at(1)));
            arguments.at(0) = Variant("changed");
            arguments.at(1) = Variant("by value");
            arguments.at(2) = Variant("True");
        });
    std::string message = "Sending";
    bool cancel = false;
    mControl->StatusEvent.Raise(message, 40, cancel);
    EXPECT_THAT(heard, ElementsAre("Sending 40"));
    EXPECT_EQ(message, "changed");
    EXPECT_TRUE(cancel);
}

TEST_F(LayersByName, AnEventThatIsNotThereIsRefused) {
    const EventHandler handler = [](std::vector<Variant>& /*arguments*/) {};
    EXPECT_RAISED((void)Hear("QNComm", "ConvertImage", handler), RtNoSuchMember);
    EXPECT_RAISED((void)Hear("clsQuorin", "ConvertImage", handler), RtObjectNotSet); // design time
    Run();
    EXPECT_TRUE(Hear("clsQuorin", "ConvertImage", handler));
}

TEST_F(LayersByName, WhatAHandlerPutsInTheWrongPlaceIsRaisedWhereTheEventCameFrom) {
    Run();
    const Subscription subscription =
        Hear("clsDataLink", "PortStateEvent",
             [](std::vector<Variant>& arguments) { arguments.at(0) = Variant("perhaps"); });
    bool open = true;
    EXPECT_RAISED(mControl->Link().PortStateEvent.Raise(open), RtTypeMismatch);
}

TEST_F(LayersByName, TheHostMayDestroyTheControlInAnEventOfItsLayer) {
    Run();
    bool busy = false;
    mOnStatus = [&](std::string&, bool&) {
        if (!mControl) return;
        busy = mControl->IsBusy();
        mControl.reset();
    };
    try {
        Layer("RunProgram");
    } catch (const QNError&) { // how the operation ends is not asked here
    }
    EXPECT_TRUE(busy);
    EXPECT_EQ(mControl, nullptr);
    mLoop.Yield(100); // nothing of it is left that would speak
}

} // namespace
} // namespace qncomm
