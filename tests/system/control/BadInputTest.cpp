// What nobody should give the control: it says what is wrong with the runtime's numbers or its own
// boxes, and works afterwards.

#include "testing/stack/AssembledFixture.h"

#include "common/RuntimeErrors.h"
#include "testing/core/ExpectRaised.h"

#include <limits>

namespace qncomm::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

class BadInput : public AssembledFixture {
  protected:
    void ExpectUsable() {
        Show().DoAutoconnect();
        EXPECT_EQ(Type("PRINT 5\r"), "PRINT 5\r\n5\r\nOk");
        EXPECT_EQ(Control().PrinterType(), "R7G");
        EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault);
    }
    int ReadRaises(const std::string& key, const Variant& value) {
        MemoryPropertyBag bag;
        bag.mValues = {{"BackColor", std::int32_t{255}}, {key, value}};
        return NumberRaisedBy([&] { Control().UserControl_ReadProperties(bag); });
    }
};

TEST_F(BadInput, APropertyOfAWrongTypeRaisesAndChangesNothing) {
    const Variant font = FontRecord({"Serif", 9.0F});
    for (const char* key : {"ForeColor", "Enabled", "BackStyle", "BorderStyle", "Columns", "Rows",
                            "ToolbarVisible", "ToolbarAlign"}) {
        EXPECT_EQ(ReadRaises(key, Variant("many")), RtTypeMismatch) << key;
        EXPECT_EQ(ReadRaises(key, Variant("")), RtTypeMismatch) << key;
        EXPECT_EQ(ReadRaises(key, font), RtTypeMismatch) << key;
    }
    EXPECT_EQ(ReadRaises("Caption", font), RtTypeMismatch);
    for (const char* key : {"BackStyle", "BorderStyle", "Columns", "Rows", "ToolbarAlign"})
        EXPECT_EQ(ReadRaises(key, std::int32_t{70'000}), RtOverflow) << key;
    EXPECT_EQ(ReadRaises("ForeColor", Variant("99999999999")), RtOverflow);
    EXPECT_EQ(Control().BackColor(), 15);
    ExpectUsable();
}

TEST_F(BadInput, UnknownPropertiesAreLeftAlone) {
    EXPECT_EQ(ReadRaises("Colour", Variant("many")), 0);
    EXPECT_EQ(ReadRaises("", FontRecord({"Serif", 9.0F})), 0);
    EXPECT_EQ(ReadRaises(std::string("Back\0Color", 10), std::int32_t{1}), 0);
    EXPECT_EQ(Control().BackColor(), 255);
    Control().SetRegSettings(mSettings);
    ExpectUsable();
}

TEST_F(BadInput, AGridThatCannotBeIsRefusedAndTheControlGoesOnWithTheOneItHas) {
    for (const std::int16_t size : std::initializer_list<std::int16_t>{0, -1, -32768}) {
        EXPECT_EQ(ReadRaises("Rows", size), RtInvalidCall) << size;
        EXPECT_EQ(ReadRaises("Columns", size), RtInvalidCall) << size;
        EXPECT_EQ(mAssembly->Grid().Rows(), 300);
        EXPECT_EQ(mAssembly->Grid().Columns(), 300);
    }
    MemoryPropertyBag narrow;
    narrow.mValues = {{"Columns", std::int16_t{80}}, {"Rows", std::int16_t{0}}};
    EXPECT_EQ(NumberRaisedBy([&] { Control().UserControl_ReadProperties(narrow); }), RtInvalidCall);
    EXPECT_EQ(mAssembly->Grid().Columns(), 300) << "neither size without the other";
    EXPECT_EQ(Control().BackColor(), 15) << "nothing of a refused bag is taken";
    ExpectUsable();
}

TEST_F(BadInput, AMacroOfAMegabyteIsSentWhole) {
    ExpectUsable();
    const std::string record = "0;" + std::string(1'000'000, 'x') + "<CR>";
    mSettings->WriteValue("FunctionKeys", "F1", record);
    Control().SetRegSettings(mSettings);
    EXPECT_EQ(Control().Toolbar1.Find("F1")->toolTip, "Text:\"" + std::string(40, 'x') + "...\"");
    TakeSent();
    Control().PressToolbarKey("F1");
    EXPECT_EQ(TakeSent().size(), 1'000'001U);
    mReactor.Pass(5000);
    EXPECT_THAT(Screen(), HasSubstr("Error")) << "the printer's lines are shorter";
    ExpectUsable();
}

TEST_F(BadInput, AMegabyteOfPromptsOrMarksEnds) {
    std::string prompts = "0;";
    std::string marks = "0;";
    for (int i = 0; i < 250'000; ++i) {
        prompts += "&&&&";
        marks += "<CR>";
    }
    ExpectUsable();
    TakeSent();
    mSettings->WriteValue("FunctionKeys", "F1", prompts);
    Control().PressToolbarKey("F1");
    EXPECT_EQ(TakeSent(), "");
    mSettings->WriteValue("FunctionKeys", "F2", marks);
    Control().PressToolbarKey("F2");
    EXPECT_EQ(TakeSent(), std::string(250'000, '\r'));
    EXPECT_THAT(mInputs.mBoxes, IsEmpty());
    ExpectUsable();
}

TEST_F(BadInput, EveryUnbalancedFormOfAPromptShowsTheBoxAndSendsNothing) {
    ExpectUsable();
    TakeSent();
    const Strings forms = {"&&",       "&&&",         "&&x",        "x&&",      "&&?",
                           "&&?N",     "&&?N\"q\"",   "&&?N\"q",    "&&&&&&",   "&&A&& &&",
                           "&& &&&& ", "&&?A&&&&?B",  "&&?A&&B&&",  "<CR>&&",   "&&<NUL>",
                           "&&\"",     "&&&&&&&&&& ", "&&?A&& &&B", "a&&b&&c&&"};
    for (const std::string& form : forms) {
        mSettings->WriteValue("FunctionKeys", "F1", "0;" + form);
        mDesktop.mBoxes.clear();
        Control().PressToolbarKey("F1");
        ASSERT_EQ(mDesktop.mBoxes.size(), 1U) << form;
        EXPECT_EQ(mDesktop.mBoxes[0].text, "Syntax Error, missing delimiter '&&'.");
    }
    EXPECT_EQ(TakeSent(), "");
    EXPECT_THAT(mInputs.mBoxes, IsEmpty()) << "nobody is asked for what cannot be sent";
    ExpectUsable();
}

TEST_F(BadInput, BalancedButEmptyFormsOfAPromptAreHarmless) {
    ExpectUsable();
    mInputs.mAnswers = {"1"};
    TakeSent();
    for (const char* form : {"&&&&", "&&?&&", "&&?\"\"&&", "&&?\"&&", "&&\"\"&&", "&&?\"\"\"&&"}) {
        mSettings->WriteValue("FunctionKeys", "F1", "0;" + std::string(form));
        Control().PressToolbarKey("F1");
    }
    EXPECT_EQ(TakeSent(), "1111") << "asked for once under the empty name, then remembered";
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
}

TEST_F(BadInput, KeysAndIndexesThatAreNotThere) {
    ExpectUsable();
    TakeSent();
    for (const std::string& key :
         {std::string("F9"), std::string("F0"), std::string(), std::string("Clear "),
          std::string("\0", 1), std::string(1'000'000, 'k'), std::string("1")}) {
        mDesktop.mBoxes.clear();
        Control().PressToolbarKey(key);
        ASSERT_EQ(mDesktop.mBoxes.size(), 1U);
        EXPECT_EQ(mDesktop.mBoxes[0].text, "\r\nThis function is not implemented ");
    }
    using Limits = std::numeric_limits<std::int32_t>;
    for (const std::int32_t index : {0, -1, 19, 70'000, Limits::min(), Limits::max()})
        EXPECT_EQ(NumberRaisedBy([&] { Control().PressToolbarKey(index); }), RtSubscript) << index;
    Control().Toolbar1.Click("Nonsense");
    Control().mnuPopUp_Click(-1);
    EXPECT_EQ(TakeSent(), "");
    ExpectUsable();
}

TEST_F(BadInput, StoredMacrosOfAnyKindDoNothing) {
    ExpectUsable();
    TakeSent();
    for (const char* record : {"", ";", ";;;", "3;x", "00;x", "-1;x", "0", "1", "2", "2;", "2;\"\"",
                               "Nada;x", " 0;x", "0x;y"}) {
        mSettings->WriteValue("FunctionKeys", "F1", record);
        mDesktop.mBoxes.clear();
        Control().PressToolbarKey("F1");
        const bool namesNoFile = std::string(record) == "1";
        EXPECT_EQ(mDesktop.mBoxes.size(), namesNoFile ? 1U : 0U) << record;
    }
    EXPECT_EQ(TakeSent(), "");
    EXPECT_THAT(mLauncher.mRequests, IsEmpty());
}

TEST_F(BadInput, ACaptureWhereNoFileCanBe) {
    EXPECT_EQ(NumberRaisedBy([&] { Control().SetCaptureToFile(mFolder.File("none/x.txt")); }),
              RtPathNotFound);
    EXPECT_NE(NumberRaisedBy([&] { Control().SetCaptureToFile(""); }), 0);
    EXPECT_NE(NumberRaisedBy([&] { Control().SetCaptureToFile(std::string(10'000, 'x')); }), 0);
    mFiles.mAnswers = {mFolder.File("none/x.txt")};
    EXPECT_EQ(NumberRaisedBy([&] { Control().PressToolbarKey("DownloadA"); }), RtPathNotFound);
    EXPECT_TRUE(mFolder.IsEmpty());
    ExpectUsable();
}

TEST_F(BadInput, NamesThatNoPrinterHas) {
    Control().PrinterType();
    const std::string quote = "c:A\"B";
    EXPECT_NE(NumberRaisedBy([&] { Control().KillQN(quote); }), 0);
    EXPECT_NE(NumberRaisedBy([&] { Control().KillQN(std::string(2000, 'n')); }), 0);
    EXPECT_NE(NumberRaisedBy([&] { Control().CopyFile("", ""); }), 0);
    EXPECT_NE(NumberRaisedBy([&] { Control().ChDir(""); }), 0);
    EXPECT_NE(NumberRaisedBy([&] { Control().FormatDev("nodevice:"); }), 0);
    EXPECT_EQ(NumberRaisedBy([&] { Control().SetTerminalFontSize("1e99"); }), RtOverflow);
    EXPECT_EQ(NumberRaisedBy([&] { Control().SetTerminalFontSize("-1"); }), RtInvalidCall);
    ExpectUsable();
}

} // namespace
} // namespace qncomm::testing
