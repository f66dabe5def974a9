#include "PrinterFixture.h"
#include "printer/SetupListing.h"

namespace qncomm::testing {
namespace {

std::string Item(std::string_view line) {
    const clsPrinterSetupItem item = ParseSetupLine(line);
    return item.Key + "=" + item.Value;
}

TEST(SetupLine, IsSplitAtItsLastCommaAndTrimmed) {
    EXPECT_EQ(Item("#A,B,C"), "A,B=C");
    EXPECT_EQ(Item(" SER-COM, UART1 , 9600 "), "SER-COM, UART1=9600");
    EXPECT_EQ(Item("A,"), "A=");
    EXPECT_EQ(Item("##A,B"), "#A=B") << "one mark is dropped";
    EXPECT_EQ(Item(" #A,B"), "#A=B") << "at the very start only";
    EXPECT_EQ(Item(","), "=");
}

TEST(SetupLine, WithoutACommaRaises) {
    EXPECT_RAISED(ParseSetupLine("no comma"), 5);
    EXPECT_RAISED(ParseSetupLine(""), 5);
}

class Setup : public PrinterFixture {
  protected:
    Lines Items() {
        Lines lines;
        for (const auto& item : *mQuorin.PrinterSetupItems())
            lines.push_back(item->Key + "=" + item->Value);
        return lines;
    }
};

TEST_F(Setup, IsAskedForOnThePortThatTheHostIsOn) {
    Script("SETUP WRITE\"uart1:\"", {"#SER-COM,UART1,BAUDRATE,9600", "MEDIA,LENGTH,"});
    mQuorin.GetSetup();
    EXPECT_THAT(Items(), ElementsAre("SER-COM,UART1,BAUDRATE=9600", "MEDIA,LENGTH="));
    EXPECT_EQ(mQuorin.PrinterSetupItems()->Item("media,length")->Value, "");
}

TEST_F(Setup, OfAnEmptyReplyIsEmpty) {
    Script("SETUP WRITE\"uart1:\"", {"A,1"});
    mQuorin.GetSetup();
    Script("SETUP WRITE\"uart1:\"");
    mQuorin.GetSetup();
    EXPECT_THAT(Items(), IsEmpty());
}

TEST_F(Setup, StaysWhenThePortIsRefused) {
    Script("SETUP WRITE\"uart1:\"", {"A,1"});
    mQuorin.GetSetup();
    const auto before = mQuorin.PrinterSetupItems();
    RefusePort();
    mQuorin.GetSetup();
    mQuorin.ChangePrinterSetupItem("A", "2");
    mQuorin.SetupWriteFile("ram:S");
    mQuorin.SetupLoadFile("ram:S");
    EXPECT_EQ(mQuorin.PrinterSetupItems(), before);
    GrantPort();
}

TEST_F(Setup, KeepsTheItemsBeforeALineWithoutAComma) {
    Script("SETUP WRITE\"uart1:\"", {"A,1", "nonsense", "B,2"});
    EXPECT_RAISED(mQuorin.GetSetup(), 5);
    EXPECT_THAT(Items(), ElementsAre("A=1"));
}

TEST_F(Setup, KeepsTheItemsBeforeAKeyThatComesTwice) {
    Script("SETUP WRITE\"uart1:\"", {"A,1", "B,2", "a,3", "C,4"});
    EXPECT_RAISED(mQuorin.GetSetup(), 457);
    EXPECT_THAT(Items(), ElementsAre("A=1", "B=2"));
}

TEST_F(Setup, OfManyItemsIsCancelledInTheMiddle) {
    Lines items;
    for (int item = 0; item < 10'000; ++item)
        items.push_back("A,ITEM" + std::to_string(item) + ",1");
    Script("SETUP WRITE\"uart1:\"", items);
    const CancelOnceThePortIsGivenBack cancel(mLoop, mLink);
    EXPECT_THROW(mQuorin.GetSetup(), OperationCancelled);
    EXPECT_LT(mQuorin.PrinterSetupItems()->Count(), 10'000U);
}

TEST_F(Setup, AnItemIsChangedUnderItsUpperCaseKeyWithItsValueAsItIs) {
    Script("SETUP WRITE\"uart1:\"", {"MEDIA,X,old"});
    mQuorin.GetSetup();
    Script("SETUP\"MEDIA,X,new Value\"");
    mQuorin.ChangePrinterSetupItem("media,x", "new Value");
    EXPECT_THAT(Items(), ElementsAre("MEDIA,X=old"));
}

TEST_F(Setup, AFileIsWrittenAndReadAndOnlyWritingChangesItsDevice) {
    KnowCleanDevices("R7A");
    Script("SETUP\"ram:s.set\"");
    mQuorin.SetupLoadFile("ram:s.set");
    EXPECT_THAT(DirtyDevices(), IsEmpty());
    Script("SETUP WRITE\"ram:s.set\"");
    mQuorin.SetupWriteFile("ram:s.set");
    EXPECT_THAT(DirtyDevices(), ElementsAre("ram:"));
    Script("SETUP WRITE\"disk:s\"");
    EXPECT_RAISED_FROM(mQuorin.SetupWriteFile("disk:s"), "1010 clsQuorin:SetDeviceDirty");
}

TEST_F(Setup, ItemsMayBeReplacedByTheHost) {
    const auto own = std::make_shared<PrinterSetup>();
    mQuorin.SetPrinterSetupItems(own);
    EXPECT_EQ(mQuorin.PrinterSetupItems(), own);
    mQuorin.SetPrinterSetupItems(nullptr);
    EXPECT_TRUE(mQuorin.PrinterSetupItems()->IsEmpty());
}

} // namespace
} // namespace qncomm::testing
