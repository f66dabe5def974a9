// The smaller parts of the window: pictures, ports, the command line, labels, the status bar.

#include "PartsFixture.h"
#include "testing/printer/TestPictures.h"

#include "AddressDialog.h"
#include "Ask.h"
#include "CommandLine.h"
#include "LabelView.h"
#include "PcxImage.h"
#include "PreviewPane.h"
#include "StatusView.h"
#include "testing/face/Accessible.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QStatusBar>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>

namespace qncomm::testing {

using namespace qnterm;
namespace {

using qncomm::testing::ScratchFolder;
using ::testing::HasSubstr;

// -- Pictures

QByteArray Pcx(int width, int height) {
    const std::string bytes =
        qncomm::testing::TestPcx(width, height, [](int x, int y) { return x == y; });
    return {bytes.data(), static_cast<qsizetype>(bytes.size())};
}

TEST(PcxPicture, InkIsBlackWhereTheFileHasIt) {
    const QImage image = DecodePcx(Pcx(37, 21));
    ASSERT_EQ(image.size(), QSize(37, 21));
    EXPECT_EQ(image.pixel(5, 5), qRgb(0, 0, 0));
    EXPECT_EQ(image.pixel(6, 5), qRgb(255, 255, 255));
    EXPECT_EQ(image.pixel(36, 0), qRgb(255, 255, 255));
}

TEST(PcxPicture, AFileCutAnywhereIsNoPicture) {
    const QByteArray whole = Pcx(37, 21);
    for (qsizetype length = 0; length + 2 < whole.size(); ++length)
        EXPECT_TRUE(DecodePcx(whole.left(length)).isNull()) << length;
}

TEST(PcxPicture, AHeaderThatLiesIsNoPicture) {
    QByteArray bytes = Pcx(37, 21);
    bytes[66] = 1; // a line that is shorter than the picture is wide
    EXPECT_TRUE(DecodePcx(bytes).isNull());
    bytes = Pcx(37, 21);
    bytes[9] = '\x7F'; // wider than anything
    EXPECT_TRUE(DecodePcx(bytes).isNull());
    bytes = Pcx(37, 21);
    bytes[8] = bytes[9] = 0;
    bytes[4] = 9; // ends before it begins
    EXPECT_TRUE(DecodePcx(bytes).isNull());
}

TEST(FontSamples, AFontFileShowsAndAnotherDoesNot) {
    const ScratchFolder folder;
    const std::string font = folder.Write("A.TTF", qncomm::testing::TestFont());
    const QImage sample = FontSample(QString::fromStdString(font), 24);
    EXPECT_GT(sample.width(), 100);
    const std::string none = folder.Write("B.TTF", "no font");
    EXPECT_TRUE(FontSample(QString::fromStdString(none), 24).isNull());
}

// -- The command line

TEST(StartOptions, AreReadFromTheCommandLine) {
    const StartRequest request = qnterm::ParseCommandLine(
        {"qnterm", "--port", "sim:R7A", "--settings=s.ini", "--labels", "l", "--trace", "t"});
    ASSERT_FALSE(request.ended);
    EXPECT_EQ(request.options.port, "sim:R7A");
    EXPECT_EQ(request.options.settings, "s.ini");
    EXPECT_EQ(request.options.labels, "l");
    EXPECT_EQ(request.options.trace, "t");
}

TEST(StartOptions, HelpAndVersionEndWellAndNonsenseDoesNot) {
    EXPECT_EQ(qnterm::ParseCommandLine({"qnterm", "--help"}).ended, 0);
    EXPECT_THAT(qnterm::ParseCommandLine({"qnterm", "--help"}).text.toStdString(),
                HasSubstr("--labels"));
    EXPECT_THAT(qnterm::ParseCommandLine({"qnterm", "--version"}).text.toStdString(),
                HasSubstr("qnterm 0."));
    EXPECT_EQ(qnterm::ParseCommandLine({"qnterm", "--nonsense"}).ended, 2);
    EXPECT_EQ(qnterm::ParseCommandLine({"qnterm", "file.txt"}).ended, 2);
    EXPECT_EQ(qnterm::ParseCommandLine({"qnterm", "--watch", "fast"}).ended, 2);
    EXPECT_EQ(qnterm::ParseCommandLine({"qnterm", "--watch", "9600,n,8,2"}).options.watch,
              "9600,n,8,2");
}

// -- Choosing a port

TEST(PortChooser, OffersTheVirtualPrinterFirstAndByThatName) {
    AddressDialog dialog({}, "");
    EXPECT_EQ(dialog.Address(), "sim:R7G");
    const auto& tree = *dialog.findChild<QTreeWidget*>();
    EXPECT_EQ(tree.currentItem()->text(0), "Virtual R7G");
    EXPECT_THAT(tree.topLevelItem(0)->text(0).toStdString(), HasSubstr("Virtual printer"));
}

TEST(PortChooser, AMachinesPortShowsItsStateAndIsChosenByEnter) {
    qncomm::PortListing port;
    port.binding.number = 1;
    port.binding.address = *qncomm::ParsePortAddress("/dev/ttyUSB0").address;
    port.binding.description = "Adapter";
    port.state = qncomm::PortState::Busy;
    port.detail = "held by other (12)";
    AddressDialog dialog({port}, "/dev/ttyUSB0");
    const auto& tree = *dialog.findChild<QTreeWidget*>();
    EXPECT_EQ(tree.currentItem()->text(1), "Adapter · held by other (12)");
    std::string chosen;
    QObject::connect(&dialog, &AddressDialog::Chosen, &dialog,
                     [&](const std::string& address) { chosen = address; });
    dialog.show();
    QTest::keyClick(dialog.findChild<QLineEdit*>(), Qt::Key_Return);
    EXPECT_EQ(chosen, "/dev/ttyUSB0");
}

/// A window whose fields have names, and captions with keys that are there to be read.
void ExpectUsableByKeys(QWidget& window) {
    const auto stops = qncomm::testing::StopsOf(window);
    EXPECT_THAT(stops.nameless, testing::IsEmpty());
    EXPECT_GT(stops.count, 1);
    EXPECT_THAT(qncomm::testing::CaptionsWithoutKey(window), testing::IsEmpty());
    EXPECT_THAT(qncomm::testing::CutCaptions(window), testing::IsEmpty());
}

TEST(PortChooser, IsUsableByKeysAlone) {
    AddressDialog dialog({}, "");
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    ExpectUsableByKeys(dialog);
}

TEST(Questions, AreUsableByKeysAlone) {
    QWidget window;
    window.show();
    AskText(&window, "Rename", "New name of c:A.PRG:", "A.PRG", [](const QString&) {});
    AskBefore(&window, "Delete c:A.PRG from the printer?", "This cannot be undone.", "&Delete",
              [] {});
    int seen = 0;
    for (auto* dialog : window.findChildren<QDialog*>()) {
        ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog));
        ExpectUsableByKeys(*dialog);
        ++seen;
    }
    EXPECT_EQ(seen, 2);
}

TEST(PortChooser, AnUnfinishedAddressCannotBeChosen) {
    AddressDialog dialog({}, "");
    dialog.show();
    auto& line = *dialog.findChild<QLineEdit*>();
    line.setText("tcp://");
    auto* connect = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
    EXPECT_FALSE(connect->isEnabled());
    line.setText("tcp://printer:4000");
    EXPECT_TRUE(connect->isEnabled());
}

// -- Labels

TEST(Labels, ThosePrintedAreShownAsTheyComeTheLatestFirst) {
    const ScratchFolder folder;
    LabelView view;
    view.resize(300, 400);
    view.show();
    view.SetFolder(QString::fromStdString(folder.Path()));
    EXPECT_EQ(view.Count(), 0);
    EXPECT_THAT(view.findChild<QLabel*>()->text().toStdString(), HasSubstr("Nothing"));
    QImage label(80, 40, QImage::Format_Mono);
    label.fill(1);
    ASSERT_TRUE(label.save(QString::fromStdString(folder.File("label-0001.png"))));
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.Count() == 1; }));
    EXPECT_EQ(view.Shown().size(), QSize(80, 40));
    ASSERT_TRUE(label.scaled(160, 40).save(QString::fromStdString(folder.File("label-0002.png"))));
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.Count() == 2; }));
    EXPECT_EQ(view.Shown().size(), QSize(160, 40));
}

// -- The status bar

class StatusTest : public PartsFixture {
  protected:
    StatusTest() {
        mBar.resize(900, 30);
        mBar.show();
    }
    QStatusBar mBar;
    StatusView mStatus{mBar, mOperations};
};

TEST_F(StatusTest, SaysWhyAPortIsGoneAndThatItIsBack) {
    mStatus.ShowPort({});
    EXPECT_EQ(mStatus.PortText(), "No port");
    mStatus.ShowPort({true, "COM1 (/dev/x)", "R7G", ""});
    EXPECT_EQ(mStatus.PortText(), "R7G on COM1 (/dev/x)");
    mStatus.ShowPort({false, "COM1 (/dev/x)", "", "COM1 (/dev/x) is gone: no such device."});
    EXPECT_EQ(mStatus.PortText(), "COM1 (/dev/x) lost");
    EXPECT_THAT(mStatus.Message().toStdString(), HasSubstr("is gone"));
    mStatus.ShowPort({true, "COM1 (/dev/x)", "", ""});
    EXPECT_EQ(mStatus.PortText(), "COM1 (/dev/x)");
}

TEST_F(StatusTest, WhatWasDoneIsStillToldWhenTheListsHaveBeenReadAgain) {
    mOperations.Run("Send HELLO.TXT", [](qncomm::QNComm&) {});
    mOperations.Run({}, [](qncomm::QNComm& control) {
        std::string text = "Reading files";
        bool cancel = false;
        control.StatusEvent.Raise(text, 50, cancel);
    });
    EXPECT_EQ(mStatus.Message(), "Send HELLO.TXT: done");
}

TEST_F(StatusTest, APortThatIsGoneIsToldAgainAfterWhatWasTriedOnIt) {
    mStatus.ShowPort({false, "COM1", "", "COM1 is gone."});
    mStatus.Say("No printer answered on this port.");
    EXPECT_EQ(mStatus.Message(), "No printer answered on this port.");
    mStatus.Say({}); // as when it has stood for a while
    EXPECT_EQ(mStatus.Message(), "COM1 is gone.");
    mStatus.ShowPort({true, "COM1", "", ""});
    EXPECT_EQ(mStatus.Message(), "");
}

TEST_F(StatusTest, OffersCancelWhileSomethingRunsAndNotAfterwards) {
    EXPECT_FALSE(mStatus.OffersCancel());
    bool offered = false;
    mOperations.Run("Reading", [&](qncomm::QNComm&) {
        offered = mStatus.OffersCancel();
        mBar.findChild<QToolButton*>()->click();
        EXPECT_FALSE(mStatus.OffersCancel());
    });
    EXPECT_TRUE(offered);
    EXPECT_EQ(mCancelWaits, 1);
    EXPECT_FALSE(mStatus.OffersCancel());
    EXPECT_EQ(mStatus.Message(), "Reading: cancelled");
}

} // namespace
} // namespace qncomm::testing
